#include "PulseRecordStream.h"

#include <algorithm>
#include <array>

namespace corvellan {

std::unique_ptr<PulseRecordStream> PulseRecordStream::open(pa_context* context, const PulseDevice& device,
                                                           const char* title, std::size_t fragmentFrames,
                                                           StreamStart start, Listener& listener) {
    const pa_sample_spec format{
        .format = PA_SAMPLE_FLOAT32NE, .rate = device.sampleRateHertz, .channels = device.channels.channels};
    if (!pa_sample_spec_valid(&format))
        return nullptr;
    pa_stream* const raw = pa_stream_new(context, title, &format, &device.channels);
    if (!raw)
        return nullptr;
    std::unique_ptr<PulseRecordStream> stream{new PulseRecordStream{raw, device, listener}};

    pa_buffer_attr wishes{};
    wishes.maxlength = static_cast<std::uint32_t>(-1);
    wishes.fragsize = static_cast<std::uint32_t>(fragmentFrames * pa_frame_size(&format));
    auto flags = static_cast<unsigned>(PA_STREAM_ADJUST_LATENCY) | static_cast<unsigned>(PA_STREAM_DONT_MOVE);
    if (start == StreamStart::corked)
        flags |= static_cast<unsigned>(PA_STREAM_START_CORKED);
    if (pa_stream_connect_record(raw, device.name.c_str(), &wishes, static_cast<pa_stream_flags_t>(flags)) < 0)
        return nullptr;

    // Nothing happens before the caller gives the loop back, so that no call-back comes too early.
    pa_stream_set_state_callback(
        raw, [](pa_stream*, void* self) { static_cast<PulseRecordStream*>(self)->stateChanged(); }, stream.get());
    pa_stream_set_read_callback(
        raw, [](pa_stream*, std::size_t, void* self) { static_cast<PulseRecordStream*>(self)->readable(); },
        stream.get());
    return stream;
}

PulseRecordStream::~PulseRecordStream() {
    pa_stream_set_state_callback(m_stream, nullptr, nullptr);
    pa_stream_set_read_callback(m_stream, nullptr, nullptr);
    pa_stream_disconnect(m_stream);
    pa_stream_unref(m_stream);
}

void PulseRecordStream::uncork() {
    if (pa_operation* const operation = pa_stream_cork(m_stream, 0, nullptr, nullptr))
        pa_operation_unref(operation);
}

void PulseRecordStream::stateChanged() {
    const pa_stream_state_t state = pa_stream_get_state(m_stream);
    if (state == PA_STREAM_READY)
        m_listener.streamReady(*this);
    else if (!PA_STREAM_IS_GOOD(state))
        m_listener.streamFailed(*this, pa_context_errno(pa_stream_get_context(m_stream)));
}

void PulseRecordStream::readable() {
    while (pa_stream_readable_size(m_stream) > 0) {
        const void* data = nullptr;
        std::size_t bytes = 0;
        if (pa_stream_peek(m_stream, &data, &bytes) < 0 || bytes == 0)
            return;
        if (data) {
            const std::size_t channels = m_device.channels.channels;
            const std::size_t frames = bytes / (sizeof(float) * channels);
            m_listener.streamDelivered(*this, {static_cast<const float*>(data), frames * channels});
        } else {
            deliverSilence(bytes);
        }
        pa_stream_drop(m_stream);
    }
}

void PulseRecordStream::deliverSilence(std::size_t bytes) {
    static constexpr std::array<float, 4096> silence{};
    const std::size_t channels = m_device.channels.channels;
    const std::size_t most = silence.size() / channels * channels;
    for (std::size_t rest = bytes / (sizeof(float) * channels) * channels; rest > 0;) {
        const std::size_t count = std::min(rest, most);
        m_listener.streamDelivered(*this, std::span{silence}.first(count));
        rest -= count;
    }
}

}  // namespace corvellan
