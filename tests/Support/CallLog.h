#pragma once

#include <QCoroTask>
#include <string>
#include <utility>
#include <vector>

#include "Base/AsyncStream.h"

namespace corvellan::test {

/// The calls of all fakes of one test, in order: "ws.connect", "audio.stopMic", ...
using CallLog = std::vector<std::string>;

/// A gate that an asked operation waits at until the test opens it. Open from the start.
class Gate {
public:
    void close() { m_isOpen = false; }
    void open() {
        m_isOpen = true;
        for (auto& waiter : std::exchange(m_waiters, {}))
            waiter.finish();
    }
    QCoro::Task<void> pass() {
        if (m_isOpen)
            co_return;
        auto [stream, producer] = AsyncStream<int>::make();
        m_waiters.push_back(producer);
        const auto keep = stream;
        static_cast<void>(co_await keep.next());
    }

private:
    bool m_isOpen = true;
    std::vector<AsyncStream<int>::Producer> m_waiters;
};

}  // namespace corvellan::test
