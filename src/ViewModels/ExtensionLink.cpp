#include "Models/SensorStatus.h"
#include "SessionViewModel.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan {

namespace {

constexpr int countdownSeconds = 3;
constexpr auto pollInterval = 30s;
constexpr auto retryInterval = 5s;

}  // namespace

void SessionViewModel::startSensorPolling() {
    m_extensionWsTask.cancel();
    m_sensorPollTask.cancel();
    startExtensionWs();
    ++m_linkTasks;
    m_sensorPollTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        while (!stop.stop_requested()) {
            co_await pollSensorStatus(stop);
            co_await sleep(m_environment.clock, pollInterval, stop);
        }
        --m_linkTasks;
    });
}

void SessionViewModel::stopSensorPolling() {
    m_extensionWsTask.clear();
    m_sensorPollTask.clear();
}

void SessionViewModel::checkSensorStatus() {
    runDetached([this](std::stop_token stop) { return pollSensorStatus(std::move(stop)); });
}

void SessionViewModel::startExtensionWs() {
    ++m_linkTasks;
    m_extensionWsTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        while (!stop.stop_requested()) {
            co_await listenForExtension(stop);
            co_await sleep(m_environment.clock, retryInterval, stop);
        }
        --m_linkTasks;
    });
}

QCoro::Task<void> SessionViewModel::listenForExtension(std::stop_token stop) {
    const auto token = co_await authToken();
    if (!token)
        co_return;
    // As it stands: a server URL with a query of its own keeps it, and no server of ours has one.
    const QUrl url{m_serverURL + u"?token="_s + *token, QUrl::StrictMode};
    if (!url.isValid() || stop.stop_requested())
        co_return;
    // Its own, so that it survives sessions and mixes with none.
    const auto socket = m_environment.services.makeWebSocket();
    const auto ended = co_await readExtensionMessages(*socket, url, stop);
    if (!ended)
        m_logger.error(u"Extension WS disconnected: "_s + ended.error().debugDescription());
    co_await socket->disconnect();
}

QCoro::Task<std::expected<void, Error>> SessionViewModel::readExtensionMessages(WebSocketServiceProtocol& socket,
                                                                                QUrl url, std::stop_token stop) {
    const auto connected = co_await socket.connect(std::move(url));
    if (!connected)
        co_return std::unexpected(connected.error());
    setSensorConnected(true);
    m_logger.info(u"Extension WS listener connected"_s);
    const auto stream = socket.receive();
    while (true) {
        const auto next = co_await stream.next(stop);
        if (!next)
            co_return std::unexpected(next.error());
        if (!*next)
            co_return {};
        handleExtensionMessage((**next).message);
    }
}

void SessionViewModel::handleExtensionMessage(const ServerMsg& message) {
    if (const auto* const context = std::get_if<ServerMsg::ExtensionContext>(&message.value)) {
        setExtensionContext(*context);
        if (context->callActive)
            onExtensionCallDetected(*context);
    } else if (std::holds_alternative<ServerMsg::ExtensionCallEnded>(message.value)) {
        cancelAutoStart();
        onExtensionCallEnded();
    }
}

QCoro::Task<void> SessionViewModel::pollSensorStatus(std::stop_token stop) {
    const auto token = co_await authToken();
    if (!token)
        co_return;
    auto request = restRequest(u"/ext/sensor"_s, *token);
    const auto answer = co_await m_environment.http.send(std::move(request), std::move(stop));
    constexpr int found = 200;
    if (!answer || answer->status != found) {
        setSensorConnected(false);
        co_return;
    }
    const auto status = SensorStatus::decode(answer->body);
    if (!status)
        co_return;
    setSensorConnected(status->sensorConnected);
    if (status->context && status->context->callActive) {
        setExtensionContext(status->context);
        onExtensionCallDetected(*status->context);
    } else if (m_extensionCallActive) {
        onExtensionCallEnded();
    }
}

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
