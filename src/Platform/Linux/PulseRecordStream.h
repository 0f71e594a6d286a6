#pragma once

#include <pulse/pulseaudio.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "Platform/AudioInput.h"

namespace corvellan {

/// A device as it is recorded: floats at a rate and with channels that need no mixing by the server.
struct PulseDevice {
    std::string name;
    std::uint32_t sampleRateHertz = 0;
    pa_channel_map channels{};
};

enum class StreamStart { corked, running };

/// One recording of one device. It never moves to another one: it fails when its device goes, since a
/// server would move what is heard from an output to the microphone. All of it on the loop's thread or
/// under the loop's lock.
class PulseRecordStream {
public:
    /// Called on the loop's thread. The stream may be destroyed in `streamReady` and `streamFailed`.
    class Listener {
    public:
        virtual ~Listener() = default;
        virtual void streamReady(PulseRecordStream& stream) = 0;
        /// Never ready, or lost; `error` is libpulse's number.
        virtual void streamFailed(PulseRecordStream& stream, int error) = 0;
        /// Whole frames. What the server had to leave out comes as silence.
        virtual void streamDelivered(PulseRecordStream& stream, std::span<const float> samples) = 0;
    };

    /// \param fragmentFrames how much the server is asked to deliver at once; only a wish.
    /// Null when the server refuses at once.
    [[nodiscard]] static std::unique_ptr<PulseRecordStream> open(pa_context* context, const PulseDevice& device,
                                                                 const char* title, std::size_t fragmentFrames,
                                                                 StreamStart start, Listener& listener);
    ~PulseRecordStream();
    PulseRecordStream(const PulseRecordStream&) = delete;
    PulseRecordStream& operator=(const PulseRecordStream&) = delete;

    void uncork();

    [[nodiscard]] const std::string& deviceName() const { return m_device.name; }
    [[nodiscard]] AudioFormat format() const {
        return {.sampleRateHertz = m_device.sampleRateHertz, .channels = m_device.channels.channels};
    }

private:
    PulseRecordStream(pa_stream* stream, const PulseDevice& device, Listener& listener)
        : m_stream(stream),
          m_device(device),
          m_listener(listener) {}

    void stateChanged();
    void readable();
    void deliverSilence(std::size_t bytes);

    pa_stream* m_stream;
    PulseDevice m_device;
    Listener& m_listener;
};

}  // namespace corvellan
