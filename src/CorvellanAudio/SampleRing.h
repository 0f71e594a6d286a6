#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

namespace corvellan {

/// The newest mono samples of a capture, for readers who pull. The writer never waits for a reader:
/// a full ring loses its oldest samples, and a reader who was overrun goes on with the newest half.
///
/// One writer, one reader, each on any thread.
class SampleRing {
public:
    /// About 1.37 s at 48 kHz.
    static constexpr std::size_t ringSize = 0x10000;

    /// Mixes interleaved frames down to mono, in single precision; an incomplete last frame is left
    /// out, and NaN counts as 0. One channel or fewer means that the samples are mono already.
    ///
    /// \param mono receives what was written; its memory is used again from call to call.
    void write(std::span<const float> samples, int channels, std::vector<float>& mono);

    /// Fills `into` from its start and leaves the rest of it alone.
    ///
    /// \return the number of samples copied.
    [[nodiscard]] std::size_t read(std::span<float> into);

    /// Samples read since construction, those lost to an overrun included.
    [[nodiscard]] std::int64_t ringReadPos() const;

private:
    static constexpr std::int64_t keptAfterOverrun = 32'768;

    std::vector<float> m_ringBuffer = std::vector<float>(ringSize);
    /// Samples written since construction. Never wraps; a position lies in the slot of its remainder.
    std::int64_t m_ringWritePos = 0;
    std::int64_t m_ringReadPos = 0;
    /// Guards ring and positions; the only lock that a thread of the sound server takes.
    mutable std::mutex m_ringLock;
};

}  // namespace corvellan
