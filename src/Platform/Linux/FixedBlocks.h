#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace corvellan {

/// Regroups pieces of any length into blocks of one length. What is short of a block waits.
class FixedBlocks {
public:
    explicit FixedBlocks(std::size_t samplesPerBlock) : m_samplesPerBlock(std::max<std::size_t>(samplesPerBlock, 1)) {}

    /// Calls `onBlock` with each block that is complete, in order; valid during the call.
    template <typename OnBlock>
    void add(std::span<const float> samples, OnBlock onBlock) {
        while (!samples.empty()) {
            // A whole block that nothing waits for needs no copy.
            if (m_waiting.empty() && samples.size() >= m_samplesPerBlock) {
                onBlock(samples.first(m_samplesPerBlock));
                samples = samples.subspan(m_samplesPerBlock);
                continue;
            }
            const std::size_t count = std::min(samples.size(), m_samplesPerBlock - m_waiting.size());
            m_waiting.insert(m_waiting.end(), samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(count));
            samples = samples.subspan(count);
            if (m_waiting.size() == m_samplesPerBlock) {
                onBlock(std::span<const float>{m_waiting});
                m_waiting.clear();
            }
        }
    }

private:
    std::size_t m_samplesPerBlock;
    std::vector<float> m_waiting;
};

}  // namespace corvellan
