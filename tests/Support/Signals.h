#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>
#include <vector>

namespace corvellan::test {

/// A tone that rises from `fromHertz` to `toHertz`: no part of it looks like another.
inline std::vector<float> chirp(double seconds, double rate, double fromHertz = 200, double toHertz = 3000,
                                float amplitude = 0.5F) {
    std::vector<float> samples(static_cast<std::size_t>(seconds * rate));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double time = static_cast<double>(i) / rate;
        const double phase = fromHertz * time + (toHertz - fromHertz) * time * time / (2 * seconds);
        samples[i] = amplitude * static_cast<float>(std::sin(2 * std::numbers::pi * phase));
    }
    return samples;
}

/// How alike two stretches of one length are, from -1 to 1, whatever their loudness.
inline double correlation(std::span<const float> a, std::span<const float> b) {
    double ab = 0;
    double aa = 0;
    double bb = 0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        ab += static_cast<double>(a[i]) * static_cast<double>(b[i]);
        aa += static_cast<double>(a[i]) * static_cast<double>(a[i]);
        bb += static_cast<double>(b[i]) * static_cast<double>(b[i]);
    }
    return aa > 0 && bb > 0 ? ab / std::sqrt(aa * bb) : 0;
}

struct Finding {
    double correlation = 0;  ///< Of the whole; 0 when it was not found.
    std::size_t at = 0;
};

/// Looks for the whole of `played` in `heard`, both at one rate: a piece from its middle tells where.
inline Finding find(std::span<const float> played, std::span<const float> heard) {
    if (heard.size() < played.size())
        return {};
    const std::size_t length = std::min<std::size_t>(played.size() / 4, 1500);
    const std::size_t middle = (played.size() - length) / 2;
    const auto piece = played.subspan(middle, length);
    Finding best;
    for (std::size_t at = 0; at + played.size() <= heard.size(); ++at) {
        const double likeness = correlation(piece, heard.subspan(at + middle, length));
        if (likeness > best.correlation)
            best = {.correlation = likeness, .at = at};
    }
    best.correlation = correlation(played, heard.subspan(best.at, played.size()));
    return best;
}

inline float peak(std::span<const float> samples) {
    float highest = 0;
    for (const float sample : samples)
        highest = std::max(highest, std::abs(sample));
    return highest;
}

}  // namespace corvellan::test
