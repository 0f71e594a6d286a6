#include "SampleRing.h"

#include <algorithm>

#include "Level.h"

namespace corvellan {

namespace {

void mixToMono(std::span<const float> samples, int channels, std::vector<float>& mono) {
    if (channels <= 1) {
        mono.resize(samples.size());
        std::ranges::transform(samples, mono.begin(), withoutNaN);
        return;
    }
    const auto stride = static_cast<std::size_t>(channels);
    mono.resize(samples.size() / stride);
    for (std::size_t frame = 0; frame < mono.size(); ++frame) {
        float sum = 0.0F;
        for (const float sample : samples.subspan(frame * stride, stride))
            sum += withoutNaN(sample);
        // Infinities of both signs have no sum.
        mono[frame] = withoutNaN(sum / static_cast<float>(channels));
    }
}

std::size_t slot(std::int64_t position) {
    return static_cast<std::size_t>(position) % SampleRing::ringSize;
}

}  // namespace

void SampleRing::write(std::span<const float> samples, int channels, std::vector<float>& mono) {
    // Mixed before the lock is taken: `mono` is the writer's own.
    mixToMono(samples, channels, mono);

    const std::scoped_lock lock{m_ringLock};
    // Of a buffer larger than the ring only its newest part stays.
    const std::size_t skipped = mono.size() > ringSize ? mono.size() - ringSize : 0;
    m_ringWritePos += static_cast<std::int64_t>(skipped);
    for (auto rest = std::span<const float>{mono}.subspan(skipped); !rest.empty();) {
        const std::size_t start = slot(m_ringWritePos);
        const std::size_t count = std::min(rest.size(), ringSize - start);
        std::ranges::copy(rest.first(count), m_ringBuffer.begin() + static_cast<std::ptrdiff_t>(start));
        m_ringWritePos += static_cast<std::int64_t>(count);
        rest = rest.subspan(count);
    }
}

std::size_t SampleRing::read(std::span<float> into) {
    const std::scoped_lock lock{m_ringLock};
    std::int64_t available = m_ringWritePos - m_ringReadPos;
    if (available > static_cast<std::int64_t>(ringSize)) {
        m_ringReadPos = m_ringWritePos - keptAfterOverrun;
        available = keptAfterOverrun;
    }
    const std::size_t count = std::min(into.size(), static_cast<std::size_t>(available));
    for (std::size_t i = 0; i < count; ++i)
        into[i] = m_ringBuffer[slot(m_ringReadPos + static_cast<std::int64_t>(i))];
    m_ringReadPos += static_cast<std::int64_t>(count);
    return count;
}

std::int64_t SampleRing::ringReadPos() const {
    const std::scoped_lock lock{m_ringLock};
    return m_ringReadPos;
}

}  // namespace corvellan
