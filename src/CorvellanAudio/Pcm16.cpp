#include "Pcm16.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "Level.h"

namespace corvellan {

namespace {

constexpr double outputRateHertz = 24'000.0;
// Far above any buffer: a ratio that asks for more is a broken rate.
constexpr double mostOutputSamples = 1 << 30;

void storeSample(std::int16_t sample, char* bytes) {
    auto bits = static_cast<std::uint16_t>(sample);
    if constexpr (std::endian::native == std::endian::big)
        bits = static_cast<std::uint16_t>(bits << 8U | bits >> 8U);
    std::memcpy(bytes, &bits, sizeof bits);
}

}  // namespace

std::size_t resampledCount(std::size_t samples, double fromRate, double toRate) {
    const double ratio = fromRate / toRate;
    const double count = static_cast<double>(samples) / ratio;
    // Written so that NaN fails too.
    if (!(ratio > 0.0) || !(count >= 1.0) || !(count <= mostOutputSamples))
        return 0;
    return static_cast<std::size_t>(count);
}

void resampleToPCM16(std::span<const float> samples, double fromRate, double toRate, std::span<char> bytes) {
    const std::size_t outCount = resampledCount(samples.size(), fromRate, toRate);
    if (outCount == 0)
        return;
    const double ratio = fromRate / toRate;
    // Signed, since only that conversion from a floating-point number is one instruction.
    const auto last = static_cast<std::ptrdiff_t>(samples.size()) - 1;
    const float* const input = samples.data();
    for (std::size_t i = 0; i < outCount; ++i) {
        const double position = static_cast<double>(static_cast<std::ptrdiff_t>(i)) * ratio;
        const auto base = static_cast<std::ptrdiff_t>(position);
        const auto frac = static_cast<float>(position - static_cast<double>(base));
        const float s0 = withoutNaN(input[std::min(base, last)]);
        const float s1 = withoutNaN(input[std::min(base + 1, last)]);
        // Two infinities have no difference: NaN again.
        const float value = withoutNaN(s0 + (s1 - s0) * frac);
        storeSample(static_cast<std::int16_t>(std::clamp(value, -1.0F, 1.0F) * 32767.0F), &bytes[2 * i]);
    }
}

std::size_t outputCapacity(double fromRate, std::size_t frames) {
    const double capacity = outputRateHertz / fromRate * static_cast<double>(frames);
    return capacity >= 1.0 && capacity <= mostOutputSamples ? static_cast<std::size_t>(capacity) : 0;
}

void storeLittleEndian(std::span<const std::int16_t> samples, std::span<char> bytes) {
    if constexpr (std::endian::native == std::endian::little) {
        if (!samples.empty())
            std::memcpy(bytes.data(), samples.data(), samples.size_bytes());
    } else {
        for (std::size_t i = 0; i < samples.size(); ++i)
            storeSample(samples[i], &bytes[2 * i]);
    }
}

}  // namespace corvellan
