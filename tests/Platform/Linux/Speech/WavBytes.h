#pragma once

#include <cstdint>
#include <QByteArray>
#include <QtEndian>
#include <span>

namespace corvellan::test {

template <typename Number>
QByteArray littleEndian(Number number) {
    QByteArray bytes{sizeof(Number), '\0'};
    qToLittleEndian(number, bytes.data());
    return bytes;
}

struct WavFormat {
    std::uint16_t encoding = 1;
    std::uint16_t channels = 1;
    std::uint32_t rate = 22'050;
    std::uint16_t bits = 16;
};

/// A file's head as it is written before the length is known.
inline QByteArray wavHead(WavFormat format = {}, const QByteArray& chunks = {}) {
    return "RIFF" + littleEndian<std::uint32_t>(0x7FFFF024) + "WAVE" + chunks + "fmt " +
           littleEndian<std::uint32_t>(16) + littleEndian(format.encoding) + littleEndian(format.channels) +
           littleEndian(format.rate) + littleEndian<std::uint32_t>(format.rate * 2) + littleEndian<std::uint16_t>(2) +
           littleEndian(format.bits) + "data" + littleEndian<std::uint32_t>(0x7FFFF000);
}

inline QByteArray wavSamples(std::span<const float> samples) {
    QByteArray bytes;
    for (const float sample : samples)
        bytes += littleEndian(static_cast<std::int16_t>(sample * 32'767));
    return bytes;
}

}  // namespace corvellan::test
