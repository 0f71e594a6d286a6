#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <optional>
#include <QStringList>
#include <vector>

#include "Base/Diagnostics.h"
#include "Base/Log.h"
#include "Services/Protocols/AudioChunk.h"
#include "Support/FakeAudioInputs.h"
#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

enum class Placement { inlined, threaded };

/// What both services' tests need; every test runs with the service on the main thread and on its own.
class AudioServiceFixture : public testing::TestWithParam<Placement> {
protected:
    using Stream = AsyncStream<AudioChunk>;

    AudioServiceFixture() {
        if (GetParam() == Placement::threaded)
            m_thread.emplace("audio");
        setLogSink([this](const LogLine& line) {
            const std::scoped_lock lock{m_logMutex};
            m_log.push_back(line.category + QStringLiteral("|") +
                            (line.level == LogLevel::info ? QStringLiteral("info|") : QStringLiteral("other|")) +
                            line.text);
        });
    }
    ~AudioServiceFixture() override { setLogSink({}); }

    [[nodiscard]] Executor& executor() { return m_thread ? m_thread->executor() : mainExecutor(); }

    [[nodiscard]] QStringList log() {
        const std::scoped_lock lock{m_logMutex};
        return m_log;
    }

    /// Everything that was posted to the service's executor so far has run.
    void settleService() {
        complete(executor().call([] {}));
        settle();
    }

    static Stream::Next read(const Stream& stream, std::stop_token stop = {}) {
        return complete(readOne(stream, stop));
    }

    static QCoro::Task<Stream::Next> readOne(Stream stream, std::stop_token stop) {
        co_return co_await stream.next(stop);
    }

    FakeAudioInputs inputs;
    ManualClock clock;
    Diagnostics::Side counters;

private:
    std::optional<WorkerThread> m_thread;
    std::mutex m_logMutex;
    QStringList m_log;
};

inline std::string placementName(const testing::TestParamInfo<Placement>& info) {
    return info.param == Placement::inlined ? "inlined" : "threaded";
}

}  // namespace corvellan::test
