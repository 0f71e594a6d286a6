#include "SessionViewModel.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan {

namespace {

constexpr int countdownSeconds = 3;

}  // namespace

void SessionViewModel::onExtensionCallDetected(const ExtensionContextPayload& payload) {
    if (!m_autoStartOnCall || m_isSessionActive)
        return;
    setExtensionCallActive(true);
    const auto name = payload.companyName ? payload.companyName : payload.displayName;
    m_logger.info(u"Extension call detected: "_s + name.value_or(u"nil"_s) + u" (type: "_s + payload.entityType +
                  u", id: "_s + payload.entityId + u')');
    // A repeated report of the same call starts the countdown anew.
    m_autoStartTask.cancel();
    setAutoStartCountdown(countdownSeconds);
    StartRequest request{.company = name, .hubspotId = payload.hubspotCompanyId};
    m_autoStartTask =
        CancellableTask::start([this, request = std::move(request)](std::stop_token stop) -> QCoro::Task<void> {
            for (int count = countdownSeconds; count > 0; --count) {
                if (stop.stop_requested())
                    co_return;
                setAutoStartCountdown(count);
                co_await sleep(m_environment.clock, 1s, stop);
            }
            if (stop.stop_requested())
                co_return;
            setAutoStartCountdown(std::nullopt);
            startSession(request);
        });
}

void SessionViewModel::cancelAutoStart() {
    m_autoStartTask.clear();
    setAutoStartCountdown(std::nullopt);
}

void SessionViewModel::onExtensionCallEnded() {
    setExtensionCallActive(false);
    if (!m_isSessionActive)
        return;
    m_logger.info(u"Extension call ended — ending coaching session"_s);
    endSession();
}

}  // namespace corvellan
