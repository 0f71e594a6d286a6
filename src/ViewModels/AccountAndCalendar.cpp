#include <QJsonDocument>

#include "Models/AuthTokens.h"
#include "SessionViewModel.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan {

namespace {

constexpr auto restTimeout = 60s;
constexpr auto meetingsLifetime = 300s;
constexpr int mostMeetings = 5;

bool isUnauthorized(const Error& error) {
    constexpr int unauthorized = 401;
    const auto* const refusal = error.as<BriefingError>();
    return refusal && refusal->kind == BriefingError::Kind::httpError && refusal->status == unauthorized;
}

}  // namespace

// MARK: - Account

void SessionViewModel::login() {
    runDetached([this](std::stop_token) -> QCoro::Task<void> {
        setStatusText(u"Logging in..."_s);
        auto result = co_await m_auth->login(m_authURL);
        if (!result) {
            m_logger.error(u"Login failed, forcing re-login: "_s + result.error().errorDescription());
            setStatusText(u"Re-authenticating..."_s);
            co_await m_auth->logout();
            result = co_await m_auth->login(m_authURL);
        }
        if (!result) {
            setErrorMessage(u"Login: "_s + result.error().errorDescription());
            setStatusText(u"Login failed"_s);
            co_return;
        }
        if (const auto token = co_await m_auth->token())
            setUserEmail(emailFromJWT(*token));
        setStatusText(u"Logged in"_s);
        fetchUpcomingMeetings();
    });
}

void SessionViewModel::logoutAction() {
    runDetached([this](std::stop_token) -> QCoro::Task<void> {
        co_await m_auth->logout();
        stopSession();
        setUserEmail(std::nullopt);
        setStatusText(u"Logged out"_s);
    });
}

std::optional<QString> SessionViewModel::emailFromJWT(const QString& token) {
    return jwtSubject(token);
}

// MARK: - Calendar

void SessionViewModel::fetchUpcomingMeetings(bool force) {
    // A local server has no calendar.
    if (isLocalServer())
        return;
    // An empty list is fetched again each time.
    const bool isFresh = m_meetingsFetchedAt &&
                         m_environment.clock.wallNow() - *m_meetingsFetchedAt < meetingsLifetime &&
                         !m_upcomingMeetings.empty();
    if (!force && isFresh)
        return;
    runDetached([this](std::stop_token) -> QCoro::Task<void> {
        setIsLoadingMeetings(true);
        co_await loadMeetings();
        setIsLoadingMeetings(false);
    });
}

QCoro::Task<void> SessionViewModel::loadMeetings() {
    auto token = co_await authToken();
    if (!token)
        co_return;
    setCalendarError(std::nullopt);
    auto meetings = co_await m_environment.briefings.fetchUpcoming(*token, mostMeetings);
    if (!meetings && isUnauthorized(meetings.error())) {
        m_logger.info(u"Calendar 401 — refreshing token"_s);
        co_await m_auth->invalidateToken();
        token = co_await authToken();
        if (!token) {
            setCalendarError(u"Authentication expired"_s);
            co_return;
        }
        meetings = co_await m_environment.briefings.fetchUpcoming(*token, mostMeetings);
        if (!meetings)
            m_logger.error(u"Calendar retry failed: "_s + meetings.error().errorDescription());
    } else if (!meetings) {
        debugLog(u"CALENDAR_ERROR: "_s + meetings.error().errorDescription());
        m_logger.error(u"Failed to fetch meetings: "_s + meetings.error().errorDescription());
    }
    if (!meetings) {
        // The old list stays in place, next to the error.
        setCalendarError(meetings.error().errorDescription());
        co_return;
    }
    setUpcomingMeetings(std::move(*meetings));
    m_meetingsFetchedAt = m_environment.clock.wallNow();
}

// MARK: - The coaching server's REST side

QString SessionViewModel::restBaseURL() const {
    QString base = m_serverURL;
    return base.replace("ws://"_L1, "http://"_L1).replace("wss://"_L1, "https://"_L1).remove("/ws"_L1);
}

HttpRequest SessionViewModel::restRequest(const QString& path, const QString& token) const {
    return {.url = QUrl{restBaseURL() + path, QUrl::StrictMode},
            .headers = {{"Authorization", "Bearer " + token.toUtf8()}},
            .timeout = restTimeout};
}

void SessionViewModel::postJSON(const QString& path, const QJsonObject& body) {
    runDetached([this, path, body](std::stop_token) -> QCoro::Task<void> {
        const auto token = co_await authToken();
        if (!token)
            co_return;
        auto request = restRequest(path, *token);
        if (!request.url.isValid())
            co_return;
        request.method = "POST";
        request.headers.emplace_back("Content-Type", "application/json");
        request.body = QJsonDocument{body}.toJson(QJsonDocument::Compact);
        const auto answer = co_await m_environment.http.send(std::move(request), {});
        constexpr int firstSuccess = 200;
        constexpr int firstBeyond = 300;
        if (!answer)
            m_logger.error(u"POST "_s + path + u": "_s + answer.error().debugDescription());
        else if (answer->status < firstSuccess || answer->status >= firstBeyond)
            m_logger.error(u"POST "_s + path + u": HTTP "_s + QString::number(answer->status));
    });
}

// MARK: - Post-call reports

void SessionViewModel::sendFeedback(int rating, const std::optional<QString>& note,
                                    const std::optional<SessionRecord>& record) {
    setFeedbackRating(rating);
    setFeedbackSubmitted(true);
    if (record)
        changeRecord(record->id, [rating](SessionRecord& stored) { stored.feedbackRating = rating; });
    QJsonObject body{{u"rating"_s, rating}};
    if (note && !note->isEmpty())
        body.insert(u"note"_s, *note);
    reportOnCall(u"/feedback"_s, body, record);
}

void SessionViewModel::sendOutcome(CallOutcome outcome, const std::optional<SessionRecord>& record) {
    setSelectedOutcome(outcome);
    const auto word = tableText(rawValue(outcome));
    if (record)
        changeRecord(record->id, [word](SessionRecord& stored) { stored.outcome = word; });
    reportOnCall(u"/outcome"_s, {{u"outcome"_s, word}}, record);
}

void SessionViewModel::reportOnCall(const QString& path, const QJsonObject& body,
                                    const std::optional<SessionRecord>& record) {
    auto callId = record ? record->callId : std::nullopt;
    if (!callId && m_lastSummary)
        callId = m_lastSummary->callId;
    // Without a call's id the report stays local.
    if (callId)
        postJSON(u"/calls/"_s + *callId + path, body);
}

void SessionViewModel::changeRecord(QUuid id, std::function<void(SessionRecord&)> edit) {
    if (!m_modelContext)
        return;
    runDetached([this, id, edit = std::move(edit)](std::stop_token) -> QCoro::Task<void> {
        co_await m_modelContext->change(id, edit);
        // A failed save is nobody's business here: the next one tries again.
        static_cast<void>(co_await m_modelContext->save());
    });
}

}  // namespace corvellan
