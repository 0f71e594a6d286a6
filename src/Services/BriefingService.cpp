#include "BriefingService.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>
#include <QStringList>

#include "Base/Text.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan {

namespace {

constexpr int foundStatus = 200;
constexpr auto shortTimeout = 10s;
constexpr auto briefTimeout = 60s;
constexpr auto handoffTimeout = 30s;

constexpr qsizetype tracedTokenCharacters = 20;
constexpr qsizetype tracedFailureCharacters = 1000;
constexpr qsizetype tracedBodyCharacters = 500;

/// The items of a query in order, each only when it is present.
class Query {
public:
    Query& item(QLatin1StringView name, const std::optional<QString>& value) {
        // Encoded in full, since servers read a bare "+" as a blank.
        if (value)
            m_items.append(name + u'=' + QString::fromLatin1(QUrl::toPercentEncoding(*value)));
        return *this;
    }
    Query& item(QLatin1StringView name, std::optional<std::int64_t> value) {
        return item(name, value ? std::optional{QString::number(*value)} : std::nullopt);
    }

    /// With its question mark; empty without an item.
    [[nodiscard]] QString text() const { return m_items.isEmpty() ? QString{} : u'?' + m_items.join(u'&'); }

private:
    QStringList m_items;
};

QString companyItems(const CompanyQuery& query) {
    return Query{}
        .item("company"_L1, query.company)
        .item("customerId"_L1, query.customerId)
        .item("hubspotCompanyId"_L1, query.hubspotId)
        .text();
}

HttpRequest requestFor(const QString& address, const QString& token, std::chrono::milliseconds timeout) {
    return {.url = QUrl{address, QUrl::StrictMode},
            .headers = {{"Authorization", "Bearer " + token.toUtf8()}},
            .timeout = timeout};
}

Error invalidUrl() {
    return BriefingError{BriefingError::Kind::invalidURL};
}

/// An answer with status 200.
QCoro::Task<std::expected<HttpAnswer, Error>> fetch(HttpClientProtocol& http, HttpRequest request) {
    if (!request.url.isValid())
        co_return std::unexpected(invalidUrl());
    auto answer = co_await http.send(std::move(request), {});
    if (!answer)
        co_return std::unexpected(answer.error());
    if (answer->status != foundStatus)
        co_return std::unexpected(Error{BriefingError{BriefingError::Kind::httpError, answer->status}});
    co_return answer;
}

template <typename T>
BriefingServiceProtocol::Answer<T> fetchRecord(HttpClientProtocol& http, HttpRequest request) {
    const auto answer = co_await fetch(http, std::move(request));
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return T::decode(answer->body);
}

/// Screens make a row of each: what a server sends beyond what it was asked for is dropped.
template <typename T>
void keepFirst(Decoded<std::vector<T>>& found, int most) {
    if (found && found->size() > static_cast<std::size_t>(most))
        found->erase(found->begin() + most, found->end());
}

/// The first characters of a body for a trace.
QString traced(const QByteArray& body, qsizetype characters) {
    QStringDecoder decoder{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    const QString text = decoder(body);
    return decoder.hasError() ? u"(no body)"_s : text::prefix(text, characters);
}

}  // namespace

BriefingService::BriefingService(HttpClientProtocol& http, QString baseUrl, const DebugLog& debugLog)
    : m_http(http),
      m_baseUrl(std::move(baseUrl)),
      m_debugLog(debugLog) {}

BriefingServiceProtocol::Answer<std::vector<CalendarMeeting>> BriefingService::fetchUpcoming(QString token,
                                                                                             int maxResults) {
    const auto query = Query{}.item("max_results"_L1, maxResults).text();
    auto request = requestFor(m_baseUrl + u"/api/briefings/upcoming"_s + query, token, shortTimeout);
    if (!request.url.isValid())
        co_return std::unexpected(invalidUrl());
    m_debugLog.write(u"CALENDAR_REQ: "_s + request.url.toString(QUrl::FullyEncoded) + u" token="_s +
                     text::prefix(token, tracedTokenCharacters) + u"..."_s);
    // Not by `fetch`: the body of a refusal is traced too.
    const auto answer = co_await m_http.send(std::move(request), {});
    if (!answer)
        co_return std::unexpected(answer.error());
    if (answer->status != foundStatus) {
        const auto status = QString::number(answer->status);
        const auto body = traced(answer->body, tracedFailureCharacters);
        m_debugLog.write(u"CALENDAR_RESP: HTTP "_s + status + u" body="_s + body);
        m_logger.error(u"Upcoming meetings: HTTP "_s + status + u" — "_s + body);
        co_return std::unexpected(Error{BriefingError{BriefingError::Kind::httpError, answer->status}});
    }
    const auto body = traced(answer->body, tracedBodyCharacters);
    m_debugLog.write(u"CALENDAR_RESP: HTTP 200 body="_s + body);
    auto meetings = decodeEvents(answer->body);
    if (!meetings)
        m_debugLog.write(u"CALENDAR_DECODE_ERR: "_s + meetings.error().errorDescription() + u" body="_s + body);
    keepFirst(meetings, maxResults);
    co_return meetings;
}

BriefingServiceProtocol::Answer<std::vector<ResolvedCompany>> BriefingService::searchCompany(QString token,
                                                                                             QString query, int limit) {
    auto request = requestFor(m_baseUrl + u"/api/briefings/resolve"_s, token, shortTimeout);
    request.method = "POST";
    request.headers.emplace_back("Content-Type", "application/json");
    const QJsonObject body{{u"company"_s, query}, {u"limit"_s, limit}};
    request.body = QJsonDocument{body}.toJson(QJsonDocument::Compact);
    const auto answer = co_await fetch(m_http, std::move(request));
    if (!answer)
        co_return std::unexpected(answer.error());
    auto matches = decodeMatches(answer->body);
    keepFirst(matches, limit);
    co_return matches;
}

BriefingServiceProtocol::Answer<SalesBrief> BriefingService::fetchBrief(QString token, CompanyQuery query) {
    return fetchRecord<SalesBrief>(
        m_http, requestFor(m_baseUrl + u"/api/briefings/brief"_s + companyItems(query), token, briefTimeout));
}

BriefingServiceProtocol::Answer<HandoffResponse> BriefingService::fetchHandoff(QString token, CompanyQuery query) {
    return fetchRecord<HandoffResponse>(
        m_http, requestFor(m_baseUrl + u"/api/briefings/handoff"_s + companyItems(query), token, handoffTimeout));
}

BriefingServiceProtocol::Answer<TimelineResponse> BriefingService::fetchTimeline(QString token,
                                                                                 std::optional<QString> companyId,
                                                                                 std::optional<QString> contactId,
                                                                                 int daysBack) {
    const auto query =
        Query{}.item("companyId"_L1, companyId).item("contactId"_L1, contactId).item("daysBack"_L1, daysBack).text();
    return fetchRecord<TimelineResponse>(
        m_http, requestFor(m_baseUrl + u"/api/briefings/engagement-timeline"_s + query, token, shortTimeout));
}

}  // namespace corvellan
