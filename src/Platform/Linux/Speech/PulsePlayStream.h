#pragma once

#include <pulse/pulseaudio.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace corvellan {

/// One sound on the default output: floats, mono. Its end silences what was not played yet. All of it on
/// the loop's thread or under the loop's lock.
class PulsePlayStream {
public:
    /// Called on the loop's thread. The stream may be destroyed in each.
    class Listener {
    public:
        virtual ~Listener() = default;
        /// There is room for more.
        virtual void streamHungry(PulsePlayStream& stream) = 0;
        /// What was written has been played.
        virtual void streamDrained(PulsePlayStream& stream) = 0;
        /// Never ready, or lost.
        virtual void streamFailed(PulsePlayStream& stream) = 0;
    };

    /// Null when the server refuses at once.
    [[nodiscard]] static std::unique_ptr<PulsePlayStream> open(pa_context* context, const char* title,
                                                               std::uint32_t sampleRateHertz, Listener& listener);
    ~PulsePlayStream();
    PulsePlayStream(const PulsePlayStream&) = delete;
    PulsePlayStream& operator=(const PulsePlayStream&) = delete;

    /// For how many samples there is room; none before the stream is ready.
    [[nodiscard]] std::size_t room() const;
    /// False when the stream is lost.
    bool write(std::span<const float> samples);
    /// Nothing more is to come. False when the stream is lost.
    bool drain();

private:
    PulsePlayStream(pa_stream* stream, Listener& listener) : m_stream(stream), m_listener(listener) {}

    void stateChanged();

    pa_stream* m_stream;
    Listener& m_listener;
};

}  // namespace corvellan
