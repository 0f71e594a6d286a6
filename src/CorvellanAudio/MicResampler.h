#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace corvellan {

/// Turns a microphone's buffers into 24,000 Hz mono signed 16-bit samples. The state carries on from
/// buffer to buffer, so that a cut between two buffers can't be heard; the filter lags by about 38 ms
/// and aliases stay below -140 dB. Silence stays silent.
///
/// One thread at a time, the audio call-back included: it allocates only while its buffers grow.
class MicResampler {
public:
    /// From so many waiting samples on (10 ms), a chunk takes them along beyond its capacity.
    static constexpr std::size_t mostWaitingSamples = 240;

    /// Null when nothing can be made of that rate or that number of channels.
    [[nodiscard]] static std::unique_ptr<MicResampler> create(double fromRate, int channels);

    ~MicResampler();
    MicResampler(const MicResampler&) = delete;
    MicResampler& operator=(const MicResampler&) = delete;

    /// Takes one buffer of interleaved frames and hands out what it became, at most its
    /// `outputCapacity`: what is beyond that waits and leaves first next time. The channels are mixed
    /// down before. NaN and infinity count as 0. Empty when the conversion fails; that buffer is lost.
    ///
    /// The result is valid until the next call.
    [[nodiscard]] std::span<const std::int16_t> process(std::span<const float> interleaved);

private:
    struct Converter;

    MicResampler(std::unique_ptr<Converter> converter, double fromRate, int channels);

    bool convert(std::size_t frames);

    std::unique_ptr<Converter> m_converter;
    double m_fromRate = 0.0;
    std::size_t m_channels = 1;
    std::vector<float> m_mono;
    /// First what the last call handed out, then what waits.
    std::vector<std::int16_t> m_output;
    std::size_t m_handedOut = 0;
};

}  // namespace corvellan
