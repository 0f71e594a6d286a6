#include "PulseInput.h"

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

constexpr std::uint32_t blocksPerSecond = 50;

constexpr auto openingLimit = 2s;
// A server tells of a new default before it has made up its mind.
constexpr auto settlingTime = 120ms;
constexpr std::chrono::milliseconds firstRetryDelay = 250ms;
constexpr std::chrono::milliseconds longestRetryDelay = 2s;

constexpr auto programName = "Corvellan Bram";

void release(pa_operation* operation) {
    if (operation)
        pa_operation_unref(operation);
}

Error noServerError() {
    return AudioInputError{AudioInputError::Kind::noServer,
                           u"The computer's sound service does not answer. Restart the computer, then start again."_s};
}

Error noDeviceError(AudioInputKind kind) {
    switch (kind) {
    case AudioInputKind::microphone:
        return AudioInputError{
            AudioInputError::Kind::noDevice,
            u"No microphone was found. Plug one in or choose one in the sound settings, then start again."_s};
    case AudioInputKind::systemOutput:
        return AudioInputError{AudioInputError::Kind::noDevice,
                               u"No sound output was found. Choose one in the sound settings, then start again."_s};
    }
    Q_UNREACHABLE();
}

Error refusedError(AudioInputKind kind, int error) {
    const QString reason = QString::fromUtf8(pa_strerror(error));
    switch (kind) {
    case AudioInputKind::microphone:
        return AudioInputError{
            AudioInputError::Kind::failed,
            u"The microphone can't be used (%1). Check the sound settings, then start again."_s.arg(reason)};
    case AudioInputKind::systemOutput:
        return AudioInputError{
            AudioInputError::Kind::failed,
            u"The sound output can't be listened to (%1). Check the sound settings, then start again."_s.arg(reason)};
    }
    Q_UNREACHABLE();
}

}  // namespace

PulseInput::PulseInput(AudioInputKind kind, Clock& clock, const OwnSpeech& ownSpeech)
    : m_kind(kind),
      m_clock(clock),
      m_ownSpeech(ownSpeech),
      m_retryDelay(firstRetryDelay),
      m_watchdog(m_loop, [this] { watchdogDue(); }),
      m_reconnect(m_loop, [this] { connect(); }),
      m_settle(m_loop, [this] { lookUp(); }) {}

PulseInput::~PulseInput() {
    {
        const PulseLoop::Lock lock{m_loop};
        closeAll();
    }
    m_loop.stop();
}

void PulseInput::open(OnOpened onOpened) {
    m_onOpened = std::move(onOpened);
    // Connecting happens on the loop's own thread, since it may look names up.
    m_reconnect.arm(0ms);
    m_watchdog.arm(openingLimit);
    if (!m_loop.start())
        endOpening(noServerError());
}

void PulseInput::start(AudioInputSink sink) {
    const PulseLoop::Lock lock{m_loop};
    m_sink = std::move(sink);
    if (m_stream)
        m_stream->uncork();
    if (m_next)
        m_next->uncork();
}

// The connection.

void PulseInput::connect() {
    if (m_phase == Phase::open)
        m_watchdog.arm(openingLimit);
    m_context = pa_context_new(m_loop.api(), programName);
    if (!m_context) {
        contextLost(PA_ERR_INTERNAL);
        return;
    }
    pa_context_set_state_callback(
        m_context, [](pa_context*, void* self) { static_cast<PulseInput*>(self)->contextStateChanged(); }, this);
    if (pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0 && m_context)
        contextLost(pa_context_errno(m_context));
}

void PulseInput::contextStateChanged() {
    const pa_context_state_t state = pa_context_get_state(m_context);
    if (!PA_CONTEXT_IS_GOOD(state)) {
        contextLost(pa_context_errno(m_context));
        return;
    }
    if (state != PA_CONTEXT_READY)
        return;
    pa_context_set_subscribe_callback(
        m_context,
        [](pa_context*, pa_subscription_event_type_t event, std::uint32_t, void* self) {
            static_cast<PulseInput*>(self)->serverChanged(event);
        },
        this);
    const auto devices = m_kind == AudioInputKind::microphone ? PA_SUBSCRIPTION_MASK_SOURCE : PA_SUBSCRIPTION_MASK_SINK;
    release(
        pa_context_subscribe(m_context,
                             static_cast<pa_subscription_mask_t>(static_cast<unsigned>(PA_SUBSCRIPTION_MASK_SERVER) |
                                                                 static_cast<unsigned>(devices)),
                             nullptr, nullptr));
    lookUp();
}

void PulseInput::contextLost(int error) {
    dropContext();
    if (m_phase == Phase::opening) {
        endOpening(noServerError());
        return;
    }
    interrupt(error);
    m_reconnect.arm(nextRetryDelay());
}

void PulseInput::dropContext() {
    m_next.reset();
    m_stream.reset();
    m_watchdog.disarm();
    m_settle.disarm();
    m_isLookingUp = false;
    m_isLookUpStale = false;
    if (!m_context)
        return;
    pa_context_set_state_callback(m_context, nullptr, nullptr);
    pa_context_set_subscribe_callback(m_context, nullptr, nullptr);
    // Its operations are cancelled with it: no answer comes to what was asked.
    pa_context_disconnect(m_context);
    pa_context_unref(std::exchange(m_context, nullptr));
}

void PulseInput::closeAll() {
    m_phase = Phase::closed;
    m_sink.reset();
    dropContext();
    m_reconnect.disarm();
}

// The default device.

void PulseInput::serverChanged(pa_subscription_event_type_t event) {
    const auto bits = static_cast<unsigned>(event);
    const bool isDefaultChange = (bits & PA_SUBSCRIPTION_EVENT_FACILITY_MASK) == PA_SUBSCRIPTION_EVENT_SERVER;
    const bool isNewDevice = (bits & PA_SUBSCRIPTION_EVENT_TYPE_MASK) == PA_SUBSCRIPTION_EVENT_NEW;
    // Not armed anew by each event: a server that tells many would be followed never.
    if (isDefaultChange || (isNewDevice && !m_stream))
        m_settle.armNoLater(settlingTime);
}

void PulseInput::lookUp() {
    if (!m_context || pa_context_get_state(m_context) != PA_CONTEXT_READY)
        return;
    if (m_isLookingUp) {
        m_isLookUpStale = true;
        return;
    }
    m_isLookingUp = true;
    m_isLookUpStale = false;
    m_found.reset();
    if (m_phase == Phase::open && !m_stream)
        m_watchdog.arm(openingLimit);
    release(pa_context_get_server_info(
        m_context,
        [](pa_context*, const pa_server_info* info, void* self) { static_cast<PulseInput*>(self)->serverInfo(info); },
        this));
}

void PulseInput::serverInfo(const pa_server_info* info) {
    const char* const name = !info                                  ? nullptr
                             : m_kind == AudioInputKind::microphone ? info->default_source_name
                                                                    : info->default_sink_name;
    if (!name || *name == '\0') {
        endLookUp();
        return;
    }
    // PipeWire names a placeholder while it decides.
    if (*name == '@') {
        m_isLookingUp = false;
        m_settle.armNoLater(settlingTime);
        return;
    }
    switch (m_kind) {
    case AudioInputKind::microphone:
        release(pa_context_get_source_info_by_name(
            m_context, name,
            [](pa_context*, const pa_source_info* source, int end, void* self) {
                auto& input = *static_cast<PulseInput*>(self);
                // A monitor gives what an output plays: that is no microphone.
                if (source && source->name && source->monitor_of_sink == PA_INVALID_INDEX)
                    input.m_found = PulseDevice{.name = source->name,
                                                .sampleRateHertz = source->sample_spec.rate,
                                                .channels = source->channel_map};
                if (end != 0)
                    input.endLookUp();
            },
            this));
        return;
    case AudioInputKind::systemOutput:
        release(pa_context_get_sink_info_by_name(
            m_context, name,
            [](pa_context*, const pa_sink_info* sink, int end, void* self) {
                auto& input = *static_cast<PulseInput*>(self);
                // By its name: asked for a default monitor, PipeWire gives the microphone.
                if (sink && sink->monitor_source_name && *sink->monitor_source_name != '\0')
                    input.m_found = PulseDevice{.name = sink->monitor_source_name,
                                                .sampleRateHertz = sink->sample_spec.rate,
                                                .channels = sink->channel_map};
                if (end != 0)
                    input.endLookUp();
            },
            this));
        return;
    }
    Q_UNREACHABLE();
}

void PulseInput::endLookUp() {
    m_isLookingUp = false;
    if (m_isLookUpStale)
        lookUp();
    else if (m_found)
        deviceFound(*m_found);
    else
        noDevice();
}

void PulseInput::deviceFound(const PulseDevice& device) {
    if (m_next && m_next->deviceName() == device.name)
        return;
    m_next.reset();
    if (m_stream && m_stream->deviceName() == device.name) {
        m_watchdog.disarm();
        return;
    }
    PulseDevice wanted = device;
    std::size_t fragmentFrames = microphoneTapFrames;
    const char* title = "Microphone";
    if (m_kind == AudioInputKind::systemOutput) {
        // Whoever resamples block by block needs one rate from the first to the last.
        if (m_phase == Phase::open)
            wanted.sampleRateHertz = m_firstFormat.sampleRateHertz;
        fragmentFrames = wanted.sampleRateHertz / blocksPerSecond;
        title = "System sound";
    }
    if (m_phase == Phase::open)
        m_watchdog.arm(openingLimit);
    m_next = PulseRecordStream::open(m_context, wanted, title, fragmentFrames,
                                     m_sink ? StreamStart::running : StreamStart::corked, *this);
    if (m_next)
        return;
    if (m_phase == Phase::opening)
        endOpening(refusedError(m_kind, pa_context_errno(m_context)));
    else
        retryLookUp();
}

void PulseInput::noDevice() {
    if (m_phase == Phase::opening) {
        endOpening(noDeviceError(m_kind));
        return;
    }
    m_watchdog.disarm();
    // A device that is still there is kept. Without one the server tells of the next; the pause is for
    // servers that forget to.
    if (!m_stream)
        m_settle.armNoLater(longestRetryDelay);
}

// The streams.

void PulseInput::streamReady(PulseRecordStream& stream) {
    Q_ASSERT(&stream == m_next.get());
    m_stream = std::move(m_next);
    m_watchdog.disarm();
    m_retryDelay = firstRetryDelay;
    if (m_kind == AudioInputKind::systemOutput) {
        const auto [rate, channels] = stream.format();
        m_blocks.emplace(static_cast<std::size_t>(rate / blocksPerSecond) * static_cast<std::size_t>(channels));
    }
    if (m_phase == Phase::opening) {
        m_firstFormat = stream.format();
        endOpening({});
        return;
    }
    m_isInterrupted = false;
    // Started between the stream's opening and now.
    if (m_sink) {
        m_stream->uncork();
        m_sink->onReopened();
    }
}

void PulseInput::streamFailed(PulseRecordStream& stream, int error) {
    if (m_phase == Phase::opening) {
        endOpening(error == PA_ERR_NOENTITY ? noDeviceError(m_kind) : refusedError(m_kind, error));
    } else if (&stream == m_next.get()) {
        m_next.reset();
        retryLookUp();
    } else {
        m_stream.reset();
        interrupt(error);
        m_settle.armNoLater(settlingTime);
    }
}

void PulseInput::streamDelivered(PulseRecordStream& stream, std::span<const float> samples) {
    if (&stream != m_stream.get() || !m_sink || samples.empty())
        return;
    const AudioFormat format = stream.format();
    switch (m_kind) {
    case AudioInputKind::microphone: m_sink->onBuffer(samples, format); return;
    case AudioInputKind::systemOutput:
        m_blocks->add(samples, [&](std::span<const float> block) { deliverBlock(block, format); });
        return;
    }
    Q_UNREACHABLE();
}

void PulseInput::deliverBlock(std::span<const float> block, AudioFormat format) {
    if (m_ownSpeech.isAudible(m_clock.now())) {
        m_silence.assign(block.size(), 0.0F);
        block = m_silence;
    }
    m_sink->onBuffer(block, format);
}

// Time and failures.

void PulseInput::watchdogDue() {
    if (m_phase == Phase::opening) {
        endOpening(noServerError());
    } else if (m_next) {
        m_next.reset();
        retryLookUp();
    } else if (!m_stream) {
        contextLost(PA_ERR_TIMEOUT);
    }
}

void PulseInput::retryLookUp() {
    m_watchdog.disarm();
    m_settle.armNoLater(nextRetryDelay());
}

std::chrono::milliseconds PulseInput::nextRetryDelay() {
    const auto delay = m_retryDelay;
    m_retryDelay = std::min(2 * m_retryDelay, longestRetryDelay);
    return delay;
}

void PulseInput::endOpening(std::optional<Error> failure) {
    if (failure)
        closeAll();
    else
        m_phase = Phase::open;
    if (const auto onOpened = std::exchange(m_onOpened, nullptr))
        onOpened(std::move(failure));
}

void PulseInput::interrupt(int error) {
    if (std::exchange(m_isInterrupted, true) || !m_sink)
        return;
    m_sink->onInterrupted(AudioInputError{AudioInputError::Kind::failed, QString::fromUtf8(pa_strerror(error))});
}

}  // namespace corvellan
