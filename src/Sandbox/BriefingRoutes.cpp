#include "BriefingRoutes.h"

#include <expected>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QJsonArray>
#include <QUrl>

#include "AccountBook.h"
#include "Base/Clock.h"
#include "Base/Text.h"
#include "CustomerBook.h"
#include "EventLog.h"
#include "FormFields.h"
#include "RestAnswers.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Status = QHttpServerResponse::StatusCode;

/// A field of the query as a number of the range, `otherwise` when it is not there; or what is wrong with it.
std::expected<qint64, QString> numberIn(const FormFields& query, const QString& name, qint64 lowest, qint64 highest,
                                        qint64 otherwise) {
    if (!query.contains(name))
        return otherwise;
    bool isNumber = false;
    const qint64 value = query[name].toLongLong(&isNumber);
    if (!isNumber || value < lowest || value > highest)
        return std::unexpected(u"%1 is a number from %2 to %3"_s.arg(name).arg(lowest).arg(highest));
    return value;
}

std::optional<QString> textIn(const FormFields& query, const QString& name) {
    return query.contains(name) ? std::optional{query[name]} : std::nullopt;
}

/// One server's handlers. Each is told who asks.
class Briefings {
public:
    Briefings(const AccountBook& accounts, const CustomerBook& customers, const Clock& clock, const EventLog& log)
        : m_accounts(accounts),
          m_customers(customers),
          m_clock(clock),
          m_log(log),
          m_startedAt(clock.wallNow()) {}

    /// Lets a handler answer for a user whose token is good, with the query read.
    template <typename Handler>
    QHttpServerResponse forUser(const QHttpServerRequest& request, Handler handler) const {
        const auto token = bearerToken(request);
        const auto user = token ? m_accounts.userOf(*token) : std::nullopt;
        if (!user)
            return refuse(Status::Unauthorized,
                          token ? u"the access token is not good, or no longer"_s : u"an access token is wanted"_s);
        const auto query = parseForm(request.url().query(QUrl::FullyEncoded).toLatin1());
        if (!query)
            return refuse(Status::BadRequest, u"the query is malformed"_s);
        return handler(*user, *query);
    }

    QHttpServerResponse upcoming(const QHttpServerRequest& request) const {
        return forUser(request, [this](const QString& user, const FormFields& query) {
            constexpr qint64 most = 100;
            constexpr qint64 usual = 10;
            const auto limit = numberIn(query, u"max_results"_s, 1, most, usual);
            if (!limit)
                return refuse(Status::BadRequest, limit.error());
            const auto events =
                m_customers.upcoming(user, m_startedAt, m_clock.wallNow(), static_cast<qsizetype>(*limit));
            note(u"%1 meetings for %2"_s.arg(events.size()).arg(user));
            return jsonAnswer({{u"events"_s, events}});
        });
    }

    QHttpServerResponse resolve(const QHttpServerRequest& request) const {
        return forUser(request, [this, &request](const QString& user, const FormFields& /*query*/) {
            const auto body = jsonBody(request);
            if (!body)
                return badBody(body.error());
            constexpr qint64 most = 50;
            constexpr qint64 usual = 10;
            const auto company = (*body)[u"company"_s];
            const auto limit = body->contains(u"limit"_s) ? (*body)[u"limit"_s].toInteger() : usual;
            if (!company.isString())
                return refuse(Status::BadRequest, u"company is a text"_s);
            if (limit < 1 || limit > most)
                return refuse(Status::BadRequest, u"limit is a number from 1 to 50"_s);
            const auto matches = m_customers.search(company.toString(), static_cast<qsizetype>(limit));
            note(u"%1 looks for \"%2\": %3 found"_s.arg(user, text::prefix(company.toString(), 100))
                     .arg(matches.size()));
            return jsonAnswer({{u"matches"_s, matches}});
        });
    }

    QHttpServerResponse brief(const QHttpServerRequest& request) const {
        return forUser(request, [this](const QString& user, const FormFields& query) {
            const auto* const customer = customerOf(query);
            if (!customer) {
                const QString why = u"Nothing is known of %1"_s.arg(query.value(u"company"_s, u"this company"_s));
                note(u"no brief for %1: %2"_s.arg(user, text::prefix(why, 100)));
                return jsonAnswer({{u"error"_s, why}});
            }
            note(u"the brief on %1 for %2"_s.arg(customer->name, user));
            return jsonAnswer(customer->brief);
        });
    }

    QHttpServerResponse handoff(const QHttpServerRequest& request) const {
        return forUser(request, [this](const QString& user, const FormFields& query) {
            const auto* const customer = customerOf(query);
            if (!customer || !customer->handoff)
                return refuse(Status::NotFound, customer
                                                    ? u"nobody has written a handoff note on %1"_s.arg(customer->name)
                                                    : u"there is no such company"_s);
            note(u"the handoff note on %1 for %2"_s.arg(customer->name, user));
            return jsonAnswer(*customer->handoff);
        });
    }

    QHttpServerResponse timeline(const QHttpServerRequest& request) const {
        return forUser(request, [this](const QString& user, const FormFields& query) {
            constexpr qint64 most = 3650;
            constexpr qint64 usual = 90;
            const auto days = numberIn(query, u"daysBack"_s, 1, most, usual);
            if (!days)
                return refuse(Status::BadRequest, days.error());
            const auto company = textIn(query, u"companyId"_s);
            const auto contact = textIn(query, u"contactId"_s);
            if (!company && !contact)
                return refuse(Status::BadRequest, u"companyId or contactId is wanted"_s);
            const auto* const customer =
                company ? m_customers.find(company, {}, {}) : m_customers.findByContact(*contact);
            if (!customer)
                return refuse(Status::NotFound, u"there is no such company or contact"_s);
            note(u"the timeline of %1 for %2, %3 days"_s.arg(customer->name, user).arg(*days));
            return jsonAnswer(CustomerBook::timeline(*customer, contact, contact.value_or(company.value_or(QString{})),
                                                     static_cast<int>(*days), m_clock.wallNow()));
        });
    }

private:
    /// Null when there is none, or when its number is no number.
    [[nodiscard]] const Customer* customerOf(const FormFields& query) const {
        std::optional<std::int64_t> crmId;
        if (query.contains(u"customerId"_s)) {
            bool isNumber = false;
            crmId = query[u"customerId"_s].toLongLong(&isNumber);
            if (!isNumber)
                return nullptr;
        }
        return m_customers.find(textIn(query, u"hubspotCompanyId"_s), crmId, textIn(query, u"company"_s));
    }

    [[nodiscard]] QHttpServerResponse refuse(Status status, const QString& why) const {
        note(u"refused (%1): %2"_s.arg(static_cast<int>(status)).arg(why));
        return failure(status, why);
    }

    void note(const QString& what) const { m_log.event(u"brief"_s, what); }

    const AccountBook& m_accounts;
    const CustomerBook& m_customers;
    const Clock& m_clock;
    const EventLog& m_log;
    WallTime m_startedAt;
};

}  // namespace

void addBriefingRoutes(QHttpServer& http, const AccountBook& accounts, const CustomerBook& customers,
                       const Clock& clock, const EventLog& log) {
    using Method = QHttpServerRequest::Method;
    using Handler = QHttpServerResponse (Briefings::*)(const QHttpServerRequest&) const;
    const Briefings briefings{accounts, customers, clock, log};
    const auto add = [&](const QString& path, Method method, Handler handler) {
        http.route(u"/api/briefings/"_s + path, method,
                   [briefings, handler](const QHttpServerRequest& request) { return (briefings.*handler)(request); });
    };
    add(u"upcoming"_s, Method::Get, &Briefings::upcoming);
    add(u"resolve"_s, Method::Post, &Briefings::resolve);
    add(u"brief"_s, Method::Get, &Briefings::brief);
    add(u"handoff"_s, Method::Get, &Briefings::handoff);
    add(u"engagement-timeline"_s, Method::Get, &Briefings::timeline);
}

}  // namespace corvellan::sandbox
