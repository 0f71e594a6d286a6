#include "PulsePlayStream.h"

namespace corvellan {

namespace {

/// How much stands between the program and the ear. The server mixes half of what the target has beyond two steps
/// ahead, 30 milliseconds: only that is heard after the end of the stream. The rest waits unmixed, never less than a
/// quarter of a second, so that a busy computer is not heard.
constexpr std::uint32_t targetMilliseconds = 500;
constexpr std::uint32_t stepMilliseconds = 220;
/// From here on it is played.
constexpr std::uint32_t firstMilliseconds = 20;

std::uint32_t bytesOf(std::uint32_t milliseconds, std::uint32_t sampleRateHertz) {
    constexpr std::uint32_t perSecond = 1000;
    return sampleRateHertz * milliseconds / perSecond * static_cast<std::uint32_t>(sizeof(float));
}

}  // namespace

std::unique_ptr<PulsePlayStream> PulsePlayStream::open(pa_context* context, const char* title,
                                                       std::uint32_t sampleRateHertz, Listener& listener) {
    const pa_sample_spec format{.format = PA_SAMPLE_FLOAT32NE, .rate = sampleRateHertz, .channels = 1};
    if (!pa_sample_spec_valid(&format))
        return nullptr;
    pa_stream* const raw = pa_stream_new(context, title, &format, nullptr);
    if (!raw)
        return nullptr;
    std::unique_ptr<PulsePlayStream> stream{new PulsePlayStream{raw, listener}};

    pa_buffer_attr wishes{};
    wishes.maxlength = static_cast<std::uint32_t>(-1);
    wishes.fragsize = static_cast<std::uint32_t>(-1);
    wishes.tlength = bytesOf(targetMilliseconds, sampleRateHertz);
    wishes.minreq = bytesOf(stepMilliseconds, sampleRateHertz);
    wishes.prebuf = bytesOf(firstMilliseconds, sampleRateHertz);
    if (pa_stream_connect_playback(raw, nullptr, &wishes, PA_STREAM_ADJUST_LATENCY, nullptr, nullptr) < 0)
        return nullptr;

    // Nothing happens before the caller gives the loop back, so that no call-back comes too early.
    pa_stream_set_state_callback(
        raw, [](pa_stream*, void* self) { static_cast<PulsePlayStream*>(self)->stateChanged(); }, stream.get());
    pa_stream_set_write_callback(
        raw,
        [](pa_stream*, std::size_t, void* self) {
            auto& stream = *static_cast<PulsePlayStream*>(self);
            stream.m_listener.streamHungry(stream);
        },
        stream.get());
    return stream;
}

PulsePlayStream::~PulsePlayStream() {
    pa_stream_set_state_callback(m_stream, nullptr, nullptr);
    pa_stream_set_write_callback(m_stream, nullptr, nullptr);
    // What was asked of it is cancelled with it.
    pa_stream_disconnect(m_stream);
    pa_stream_unref(m_stream);
}

std::size_t PulsePlayStream::room() const {
    if (pa_stream_get_state(m_stream) != PA_STREAM_READY)
        return 0;
    const std::size_t bytes = pa_stream_writable_size(m_stream);
    return bytes == static_cast<std::size_t>(-1) ? 0 : bytes / sizeof(float);
}

bool PulsePlayStream::write(std::span<const float> samples) {
    return pa_stream_write(m_stream, samples.data(), samples.size_bytes(), nullptr, 0, PA_SEEK_RELATIVE) == 0;
}

bool PulsePlayStream::drain() {
    pa_operation* const operation = pa_stream_drain(
        m_stream,
        [](pa_stream*, int success, void* self) {
            auto& stream = *static_cast<PulsePlayStream*>(self);
            if (success != 0)
                stream.m_listener.streamDrained(stream);
            else
                stream.m_listener.streamFailed(stream);
        },
        this);
    if (!operation)
        return false;
    pa_operation_unref(operation);
    return true;
}

void PulsePlayStream::stateChanged() {
    const pa_stream_state_t state = pa_stream_get_state(m_stream);
    if (state == PA_STREAM_READY)
        m_listener.streamHungry(*this);
    else if (!PA_STREAM_IS_GOOD(state))
        m_listener.streamFailed(*this);
}

}  // namespace corvellan
