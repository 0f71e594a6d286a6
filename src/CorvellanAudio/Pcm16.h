#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// Signed 16-bit little-endian mono, the form in which audio leaves for transcription. Pure functions,
/// callable on any thread.
namespace corvellan {

/// How many samples `resampleToPCM16` makes: the count divided by the ratio of the rates, truncated.
/// 0 when the rates make no ratio.
[[nodiscard]] std::size_t resampledCount(std::size_t samples, double fromRate, double toRate);

/// Plain linear interpolation, on purpose: no low-pass filter, and no state from one call to the next,
/// so that every chunk starts at phase 0 and drops the fraction left at its end. NaN counts as 0.
///
/// \param bytes receives `resampledCount` samples of 2 bytes each; it must hold exactly that much.
void resampleToPCM16(std::span<const float> samples, double fromRate, double toRate, std::span<char> bytes);

/// How many frames a buffer of `frames` frames may become: 24000 divided by `fromRate`, in double
/// precision, multiplied by the frames, truncated.
[[nodiscard]] std::size_t outputCapacity(double fromRate, std::size_t frames);

/// Writes native samples as little-endian bytes. `bytes` must hold 2 bytes a sample.
void storeLittleEndian(std::span<const std::int16_t> samples, std::span<char> bytes);

}  // namespace corvellan
