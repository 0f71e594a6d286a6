#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

#include "Base/Clock.h"

namespace corvellan {

/// Whether the program's own speech is to be heard, so that the system side leaves it out: while it
/// is, blocks of the system side are silence. Who plays calls `begin` before the first sample and
/// `end` after the last; players may overlap. One object for the process, callable on any thread,
/// audio call-backs included.
class OwnSpeech {
public:
    /// What was played last is still on its way through the sound server for so long.
    static constexpr std::chrono::milliseconds tail{250};

    void begin() { m_players.fetch_add(1, std::memory_order_acq_rel); }

    void end(MonotonicTime now) {
        // The time first: between the two the speech still counts as playing.
        m_endedAt.store(now.time_since_epoch().count(), std::memory_order_release);
        m_players.fetch_sub(1, std::memory_order_acq_rel);
    }

    [[nodiscard]] bool isAudible(MonotonicTime now) const {
        if (m_players.load(std::memory_order_acquire) > 0)
            return true;
        const auto endedAt = m_endedAt.load(std::memory_order_acquire);
        return endedAt != never && now - MonotonicTime{MonotonicTime::duration{endedAt}} < tail;
    }

private:
    using Ticks = MonotonicTime::rep;
    static constexpr Ticks never = INT64_MIN;

    std::atomic<int> m_players = 0;
    std::atomic<Ticks> m_endedAt = never;
};

}  // namespace corvellan
