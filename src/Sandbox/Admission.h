#pragma once

#include <optional>
#include <QString>

class QHttpServerRequest;
class QHttpServerResponse;
class QUrl;

namespace corvellan::sandbox {

class AccountBook;
class EventLog;

/// Who may speak with the coaching server. A client that names 127.0.0.1 takes it for a local one, which needs no
/// sign-in; under any other name a good access token is wanted. One thread; what it is made of must outlive it.
class Admission {
public:
    Admission(const AccountBook& accounts, const EventLog& log) : m_accounts(accounts), m_log(log) {}

    /// What to answer with in place of the REST side's own answer. Empty for who may pass.
    [[nodiscard]] std::optional<QHttpServerResponse> refusal(const QHttpServerRequest& request) const;

    /// The WebSocket's address carries a good token as its query item "token", or needs none. Says so in the log
    /// when not.
    [[nodiscard]] bool admits(const QUrl& webSocket) const;

private:
    [[nodiscard]] bool admits(const QUrl& url, const std::optional<QString>& token) const;

    const AccountBook& m_accounts;
    const EventLog& m_log;
};

}  // namespace corvellan::sandbox
