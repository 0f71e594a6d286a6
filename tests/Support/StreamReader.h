#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "Base/AsyncStream.h"
#include "Base/Tasks.h"
#include "TestLoop.h"

namespace corvellan::test {

/// Reads a stream on the main thread to its end and keeps what came.
template <typename T>
class StreamReader {
public:
    explicit StreamReader(AsyncStream<T> stream)
        : m_task(CancellableTask::start([stream = std::move(stream), seen = m_seen](std::stop_token stop) {
              return readAll(stream, seen, stop);
          })) {}
    ~StreamReader() {
        m_task.cancel();
        settle();
    }
    StreamReader(const StreamReader&) = delete;
    StreamReader& operator=(const StreamReader&) = delete;

    [[nodiscard]] const std::vector<T>& values() const { return m_seen->values; }
    [[nodiscard]] bool hasEnded() const { return m_seen->hasEnded; }
    /// The description of the error that ended the stream; empty after a normal end.
    [[nodiscard]] std::optional<QString> failure() const { return m_seen->failure; }

    /// Spins the loop until that many values have come. False when they don't.
    bool waitFor(std::size_t count) {
        return spinUntil([&] { return values().size() >= count; });
    }
    bool waitForEnd() {
        return spinUntil([&] { return hasEnded(); });
    }

private:
    struct Seen {
        std::vector<T> values;
        bool hasEnded = false;
        std::optional<QString> failure;
    };

    static QCoro::Task<void> readAll(AsyncStream<T> stream, std::shared_ptr<Seen> seen, std::stop_token stop) {
        while (true) {
            auto next = co_await stream.next(stop);
            if (!next)
                seen->failure = next.error().errorDescription();
            if (!next || !*next)
                break;
            seen->values.push_back(std::move(**next));
        }
        seen->hasEnded = true;
    }

    std::shared_ptr<Seen> m_seen = std::make_shared<Seen>();
    CancellableTask m_task;
};

}  // namespace corvellan::test
