#include "Level.h"

#include <cstddef>

namespace corvellan {

namespace {

float strideRMS(std::span<const float> samples, std::size_t count, std::size_t stride) {
    if (count == 0)
        return 0.0F;
    float sum = 0.0F;
    for (std::size_t i = 0; i < count; ++i) {
        const float sample = withoutNaN(samples[i * stride]);
        sum += sample * sample;
    }
    return std::sqrt(sum / static_cast<float>(count));
}

}  // namespace

float computeRMS(std::span<const float> samples) {
    return strideRMS(samples, samples.size(), 1);
}

float firstChannelRMS(std::span<const float> interleaved, int channels) {
    if (channels < 1)
        return 0.0F;
    const auto stride = static_cast<std::size_t>(channels);
    return strideRMS(interleaved, interleaved.size() / stride, stride);
}

}  // namespace corvellan
