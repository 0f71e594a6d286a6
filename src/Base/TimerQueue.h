#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "Clock.h"

namespace corvellan {

/// Pending calls in order of their deadlines; equal deadlines keep the order of their arrival.
/// Not thread-safe: its owner locks.
class TimerQueue {
public:
    Clock::TimerId add(MonotonicTime deadline, std::function<void()> due) {
        const auto id = ++m_lastId;
        m_entries.emplace(Key{deadline, id}, std::move(due));
        return id;
    }

    void remove(Clock::TimerId id) {
        std::erase_if(m_entries, [id](const auto& entry) { return entry.first.second == id; });
    }

    /// The earliest deadline; empty when nothing is pending.
    [[nodiscard]] std::optional<MonotonicTime> next() const {
        if (m_entries.empty())
            return std::nullopt;
        return m_entries.begin()->first.first;
    }

    /// Takes out every call that is due at `now`, earliest first.
    std::vector<std::function<void()>> takeDue(MonotonicTime now) {
        std::vector<std::function<void()>> due;
        while (!m_entries.empty() && m_entries.begin()->first.first <= now)
            due.push_back(std::move(m_entries.extract(m_entries.begin()).mapped()));
        return due;
    }

private:
    using Key = std::pair<MonotonicTime, Clock::TimerId>;

    std::map<Key, std::function<void()>> m_entries;
    Clock::TimerId m_lastId = 0;
};

}  // namespace corvellan
