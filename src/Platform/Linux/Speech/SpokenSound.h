#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <QByteArray>
#include <span>
#include <vector>

namespace corvellan {

/// Samples out of a WAV file that arrives in pieces and of which nobody knows the length: 16 bits, mono.
/// Any bytes give samples or are found broken.
class SpokenSound {
public:
    void add(QByteArrayView bytes);

    /// No such file; nothing more comes of it.
    [[nodiscard]] bool isBroken() const { return m_isBroken; }
    /// Known when the head has arrived.
    [[nodiscard]] std::optional<std::uint32_t> sampleRateHertz() const { return m_sampleRateHertz; }

    /// How many samples wait.
    [[nodiscard]] std::size_t size() const { return m_samples.size() - m_taken; }
    /// Those that wait, up to `most`, from -1 to 1. Good until the next call.
    [[nodiscard]] std::span<float> take(std::size_t most);

private:
    void readHead();
    void readFormat(QByteArrayView format);
    void addSamples(QByteArrayView bytes);

    /// The head as far as it has come; later half a sample.
    QByteArray m_pending;
    bool m_isBroken = false;
    bool m_hasHead = false;
    std::optional<std::uint32_t> m_sampleRateHertz;
    std::vector<float> m_samples;
    std::size_t m_taken = 0;
};

}  // namespace corvellan
