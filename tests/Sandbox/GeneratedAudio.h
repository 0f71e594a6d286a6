#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>
#include <QByteArray>
#include <random>
#include <vector>

namespace corvellan::test {

/// Mono PCM16 at 24 kHz, made piece by piece.
class GeneratedAudio {
public:
    static constexpr int sampleRateHertz = 24'000;

    GeneratedAudio& silence(double seconds) {
        m_samples.resize(m_samples.size() + count(seconds));
        return *this;
    }
    /// \param amplitude 0 to 1.
    GeneratedAudio& tone(double seconds, double amplitude = 0.3, double hertz = 440) {
        for (std::size_t i = 0; i < count(seconds); ++i)
            m_samples.push_back(
                sample(amplitude * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / sampleRateHertz)));
        return *this;
    }
    /// White noise with this RMS, always the same.
    GeneratedAudio& noise(double seconds, double rms) {
        std::mt19937 generator{7};
        std::normal_distribution<double> distribution{0, rms};
        for (std::size_t i = 0; i < count(seconds); ++i)
            m_samples.push_back(sample(distribution(generator)));
        return *this;
    }
    /// Noise under everything so far.
    GeneratedAudio& addNoise(double rms) {
        std::mt19937 generator{11};
        std::normal_distribution<double> distribution{0, rms};
        for (auto& value : m_samples)
            value = sample(value / 32'768.0 + distribution(generator));
        return *this;
    }

    [[nodiscard]] const std::vector<std::int16_t>& samples() const { return m_samples; }
    [[nodiscard]] QByteArray pcm() const {
        return {reinterpret_cast<const char*>(m_samples.data()), static_cast<qsizetype>(m_samples.size() * 2)};
    }

private:
    static std::size_t count(double seconds) {
        return static_cast<std::size_t>(std::lround(seconds * sampleRateHertz));
    }
    static std::int16_t sample(double value) {
        return static_cast<std::int16_t>(std::lround(std::fmin(std::fmax(value, -1), 1) * 32'767));
    }

    std::vector<std::int16_t> m_samples;
};

}  // namespace corvellan::test
