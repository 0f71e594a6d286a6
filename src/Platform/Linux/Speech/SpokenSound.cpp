#include "SpokenSound.h"

#include <algorithm>
#include <QtEndian>

namespace corvellan {

namespace {

constexpr qsizetype fileHeadSize = 12;
constexpr qsizetype chunkHeadSize = 8;
constexpr qsizetype formatSize = 16;
/// A head longer than this holds pictures, not speech.
constexpr qsizetype longestHead = 65'536;
constexpr std::uint32_t lowestRate = 4000;
constexpr std::uint32_t highestRate = 192'000;

template <typename Number>
Number numberAt(QByteArrayView bytes, qsizetype at) {
    return qFromLittleEndian<Number>(bytes.data() + at);
}

}  // namespace

void SpokenSound::add(QByteArrayView bytes) {
    if (m_isBroken)
        return;
    if (m_hasHead) {
        addSamples(bytes);
        return;
    }
    m_pending += bytes;
    readHead();
}

void SpokenSound::readHead() {
    const QByteArrayView head = m_pending;
    if (head.size() < fileHeadSize)
        return;
    m_isBroken = !head.startsWith("RIFF") || head.sliced(8, 4) != "WAVE";
    for (qsizetype at = fileHeadSize; !m_isBroken && head.size() - at >= chunkHeadSize;) {
        const QByteArrayView name = head.sliced(at, 4);
        const qsizetype size = numberAt<quint32>(head, at + 4);
        const qsizetype content = at + chunkHeadSize;
        if (name == "data") {
            m_hasHead = true;
            m_isBroken = !m_sampleRateHertz;
            const QByteArray samples = m_pending.sliced(content);
            m_pending.clear();
            addSamples(samples);
            return;
        }
        m_isBroken = size > longestHead - content;
        if (m_isBroken || head.size() - content < size)
            return;
        if (name == "fmt ")
            readFormat(head.sliced(content, size));
        // Chunks begin at even places.
        at = content + size + size % 2;
    }
}

void SpokenSound::readFormat(QByteArrayView format) {
    constexpr quint16 plainSamples = 1;
    m_isBroken = format.size() < formatSize || numberAt<quint16>(format, 0) != plainSamples ||
                 numberAt<quint16>(format, 2) != 1 || numberAt<quint16>(format, 14) != 16;
    if (m_isBroken)
        return;
    const auto rate = numberAt<quint32>(format, 4);
    m_isBroken = rate < lowestRate || rate > highestRate;
    if (!m_isBroken)
        m_sampleRateHertz = rate;
}

void SpokenSound::addSamples(QByteArrayView bytes) {
    if (m_isBroken)
        return;
    m_pending += bytes;
    const qsizetype whole = m_pending.size() / 2 * 2;
    for (qsizetype at = 0; at < whole; at += 2)
        m_samples.push_back(static_cast<float>(numberAt<qint16>(m_pending, at)) / 32'768.0F);
    m_pending.remove(0, whole);
}

std::span<float> SpokenSound::take(std::size_t most) {
    // Cleared out now and then, so that a long text does not pile up behind what is played.
    if (m_taken > m_samples.size() / 2) {
        m_samples.erase(m_samples.begin(), m_samples.begin() + static_cast<std::ptrdiff_t>(m_taken));
        m_taken = 0;
    }
    const std::size_t count = std::min(most, size());
    const auto taken = std::span{m_samples}.subspan(m_taken, count);
    m_taken += count;
    return taken;
}

}  // namespace corvellan
