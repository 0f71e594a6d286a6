#pragma once

#include <cstdint>
#include <memory>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Services/Protocols/ScreenShareServiceProtocol.h"

namespace corvellan {

class HttpClientProtocol;
class ScreenCaptures;

/// Takes a picture every few seconds and uploads it when it has changed since the last one that arrived. Nobody
/// is told of failures but the log, and the next picture is another try.
///
/// A stop waits for nothing: an upload that is under way may still arrive, but none begins after it. What such a
/// late one achieves counts for its own run, not for one that has begun since.
class ScreenShareService final : public ScreenShareServiceProtocol {
public:
    /// What it works with; all of it outlives the service, the executors and the clock also what is under way.
    struct Environment {
        Executor& executor;  ///< On a thread with a Qt event loop.
        Executor& worker;    ///< Hashes and encodes, milliseconds at a time.
        Clock& clock;
        HttpClientProtocol& http;
        ScreenCaptures& captures;
        /// This program's own windows are no program's to be coached in.
        std::int64_t ownProcessId;
    };

    explicit ScreenShareService(Environment environment);
    /// Stops. Waits for the executor.
    ~ScreenShareService() override;
    ScreenShareService(const ScreenShareService&) = delete;
    ScreenShareService& operator=(const ScreenShareService&) = delete;

    QCoro::Task<void> start(QString sessionId, QString httpBase, std::optional<QString> authToken,
                            ScreenShareOptions options) override;
    QCoro::Task<void> stop() override;
    [[nodiscard]] QCoro::Task<bool> isRunning();

private:
    struct State;
    std::shared_ptr<State> m_state;
};

}  // namespace corvellan
