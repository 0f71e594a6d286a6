#pragma once

#include <QByteArray>

#include "Base/Clock.h"

namespace corvellan {

/// A piece of captured audio on its way to transcription: 24,000 Hz, mono, signed 16-bit,
/// little-endian, no header. Nothing in it marks its side; only the transcription client that
/// carries it does.
struct AudioChunk {
    QByteArray pcm;
    /// When the sound server delivered the buffer that this was made from, for the latency figures.
    MonotonicTime deliveredAt{};
};

inline constexpr int chunkSampleRateHertz = 24'000;
inline constexpr int chunkBytesPerSample = 2;

}  // namespace corvellan
