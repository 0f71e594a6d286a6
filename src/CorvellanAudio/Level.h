#pragma once

#include <cmath>
#include <span>

/// Levels as RMS from 0 to 1, in single precision. Pure functions, callable on any thread. NaN counts
/// as 0, and the level of nothing is 0.
namespace corvellan {

/// A sample as the arithmetic takes it: devices can deliver NaN, and one would spoil all that follows.
[[nodiscard]] inline float withoutNaN(float sample) {
    return std::isnan(sample) ? 0.0F : sample;
}

/// The square root of the mean of the squares.
[[nodiscard]] float computeRMS(std::span<const float> samples);

/// As `computeRMS`, of the first channel of interleaved frames; an incomplete last frame is left out.
[[nodiscard]] float firstChannelRMS(std::span<const float> interleaved, int channels);

}  // namespace corvellan
