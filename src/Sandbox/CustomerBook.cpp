#include "CustomerBook.h"

#include <algorithm>
#include <functional>
#include <map>
#include <QDate>
#include <QJsonDocument>
#include <QRegularExpression>

#include "Base/Iso8601.h"
#include "DataFile.h"
#include "Models/Types.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Bad = std::unexpected<QString>;

constexpr int mostMinutes = 366 * 24 * 60;
constexpr int mostDays = 36'500;

PastEvent readEvent(EntryReader& entry) {
    PastEvent event{.type = entry.text(u"type"_s),
                    .daysAgo = entry.number(u"daysAgo"_s, 0, mostDays),
                    .at = QTime::fromString(entry.text(u"at"_s), u"HH:mm"_s),
                    .subject = entry.optionalText(u"subject"_s),
                    .outcome = entry.optionalText(u"outcome"_s),
                    .owner = entry.text(u"owner"_s),
                    .contact = entry.optionalText(u"contact"_s)};
    if (!event.at.isValid())
        entry.fail(u"at"_s, u"a time like 09:30"_s);
    return event;
}

QStringList wordsOf(const QString& text) {
    static const QRegularExpression noWord{u"[^\\p{L}\\p{N}]+"_s};
    return text.toCaseFolded().split(noWord, Qt::SkipEmptyParts);
}

/// How well a name fits what was typed, 0 for not at all.
double fit(const QString& name, const QString& typed) {
    constexpr double same = 1.0;
    constexpr double begins = 0.9;
    constexpr double within = 0.7;
    const auto words = wordsOf(name);
    const auto typedWords = wordsOf(typed);
    if (typedWords.isEmpty())
        return 0;
    if (words == typedWords)
        return same;
    const bool fits = std::ranges::all_of(typedWords, [&](const QString& typedWord) {
        return std::ranges::any_of(words, [&](const QString& word) { return word.startsWith(typedWord); });
    });
    if (!fits)
        return 0;
    return words.first().startsWith(typedWords.first()) ? begins : within;
}

double fit(const Customer& customer, const QString& typed) {
    constexpr double ofOtherName = 0.95;
    constexpr double ofDomain = 0.8;
    double best = fit(customer.name, typed);
    for (const auto& alias : customer.aliases)
        best = std::max(best, ofOtherName * fit(alias, typed));
    return std::max(best, ofDomain * fit(customer.match[u"domain"_s].toString(), typed));
}

std::chrono::sys_days dayOf(WallTime time) {
    return std::chrono::floor<std::chrono::days>(time);
}

QString dayText(std::chrono::sys_days day) {
    return iso8601(WallTime{day}).first(10);
}

QString stamp(WallTime time, bool hasFraction) {
    QString text = iso8601(time);
    constexpr qsizetype fractionAt = 19;
    constexpr qsizetype fractionLength = 4;
    return hasFraction ? text : text.remove(fractionAt, fractionLength);
}

}  // namespace

// MARK: - Customer

std::optional<std::int64_t> Customer::crmId() const {
    const auto value = match[u"crmId"_s];
    return value.isDouble() ? std::optional<std::int64_t>{value.toInteger()} : std::nullopt;
}

std::optional<QString> Customer::hubspotId() const {
    const auto value = match[u"hubspotId"_s];
    return value.isString() ? std::optional{value.toString()} : std::nullopt;
}

QJsonObject Customer::matchWith(double confidence) const {
    QJsonObject sent = match;
    sent.insert(u"name"_s, name);
    sent.insert(u"confidence"_s, confidence);
    return sent;
}

// MARK: - Reading

CustomerBook CustomerBook::shipped() {
    return shippedBook<CustomerBook>(u"customers.json"_s);
}

std::expected<CustomerBook, QString> CustomerBook::load(const QString& path) {
    return loadBook<CustomerBook>(path);
}

std::expected<CustomerBook, QString> CustomerBook::parse(const QByteArray& json) {
    auto top = parseDataFile(json);
    if (!top)
        return Bad{top.error()};
    EntryReader& root = *top;
    const auto customers = root.array(u"customers"_s);
    const auto meetings = root.array(u"meetings"_s);
    if (root.problem())
        return Bad{*root.problem()};
    CustomerBook book;
    if (const auto read = book.readCustomers(customers); !read)
        return Bad{read.error()};
    if (const auto read = book.readMeetings(meetings); !read)
        return Bad{read.error()};
    return book;
}

std::expected<void, QString> CustomerBook::readCustomers(const QJsonArray& customers) {
    for (const auto& value : customers) {
        EntryReader entry{value, u"customers[%1]"_s.arg(m_customers.size())};
        Customer customer{.name = entry.text(u"name"_s),
                          .aliases = entry.texts(u"aliases"_s),
                          .match = entry.object(u"match"_s),
                          .brief = entry.object(u"brief"_s),
                          .handoff = {},
                          .timeline = {}};
        entry.check<ResolvedCompany>(u"match"_s, customer.matchWith(1));
        entry.check<SalesBrief>(u"brief"_s, customer.brief);
        if (entry.has(u"handoff"_s)) {
            EntryReader handoff{entry.object(u"handoff"_s), entry.place() + u": handoff"_s};
            QJsonObject sent{{u"handoffNote"_s, handoff.texts(u"note"_s).join(u'\n')}};
            for (const auto& part : {u"hubspot"_s, u"meta"_s})
                if (handoff.has(part))
                    sent.insert(part, handoff.object(part));
            if (handoff.problem())
                return Bad{*handoff.problem()};
            entry.check<HandoffResponse>(u"handoff"_s, sent);
            customer.handoff = sent;
        }
        for (const auto& eventValue : entry.array(u"timeline"_s)) {
            EntryReader event{eventValue, u"%1: timeline[%2]"_s.arg(entry.place()).arg(customer.timeline.size())};
            customer.timeline.push_back(readEvent(event));
            if (event.problem())
                return Bad{*event.problem()};
        }
        if (entry.problem())
            return Bad{*entry.problem()};
        m_customers.push_back(std::move(customer));
    }
    return {};
}

std::expected<void, QString> CustomerBook::readMeetings(const QJsonArray& meetings) {
    for (const auto& value : meetings) {
        EntryReader entry{value, u"meetings[%1]"_s.arg(m_meetings.size())};
        PlannedMeeting meeting{.id = entry.text(u"id"_s),
                               .summary = entry.text(u"summary"_s),
                               .inMinutes = entry.number(u"inMinutes"_s, 0, mostMinutes, 0),
                               .minutes = entry.number(u"minutes"_s, 1, mostMinutes, 30),
                               .everyMinutes = entry.number(u"everyMinutes"_s, 1, mostMinutes, 480),
                               .inDays = entry.optionalNumber(u"inDays"_s, 0, mostDays),
                               .hasFractionStamps = entry.optionalText(u"stamps"_s) == u"fraction"_s,
                               .users = entry.texts(u"users"_s),
                               .company = entry.optionalText(u"company"_s),
                               .attendees = entry.array(u"attendees"_s)};
        if (meeting.company && !find({}, {}, meeting.company))
            entry.fail(u"company"_s, u"the name of a customer"_s);
        if (const auto sent = meetingAt(meeting, meeting.users.value(0, u"user"_s), {}, {}))
            entry.check<CalendarMeeting>(u"attendees"_s, *sent);
        if (entry.problem())
            return Bad{*entry.problem()};
        m_meetings.push_back(std::move(meeting));
    }
    return {};
}

// MARK: - Questions

QJsonArray CustomerBook::search(const QString& name, qsizetype limit) const {
    // Equals stay in the file's order.
    std::multimap<double, const Customer*, std::greater<>> hits;
    for (const auto& customer : m_customers)
        if (const double confidence = fit(customer, name); confidence > 0)
            hits.emplace(confidence, &customer);
    QJsonArray matches;
    for (const auto& [confidence, customer] : hits)
        if (matches.size() < limit)
            matches.append(customer->matchWith(confidence));
    return matches;
}

const Customer* CustomerBook::find(const std::optional<QString>& hubspotId, std::optional<std::int64_t> crmId,
                                   const std::optional<QString>& name) const {
    const auto found = std::ranges::find_if(m_customers, [&](const Customer& customer) {
        if (hubspotId)
            return customer.hubspotId() == hubspotId;
        if (crmId)
            return customer.crmId() == crmId;
        const auto isNamed = [&](const QString& one) { return wordsOf(one) == wordsOf(name.value_or(QString{})); };
        return name && (isNamed(customer.name) || std::ranges::any_of(customer.aliases, isNamed));
    });
    return found == m_customers.end() ? nullptr : &*found;
}

const Customer* CustomerBook::findByContact(const QString& email) const {
    const auto found = std::ranges::find_if(m_customers, [&](const Customer& customer) {
        const auto contacts = customer.brief[u"contacts"_s].toArray();
        return std::ranges::any_of(customer.timeline, [&](const auto& event) { return event.contact == email; }) ||
               std::ranges::any_of(contacts,
                                   [&](const QJsonValue& contact) { return contact[u"email"_s].toString() == email; });
    });
    return found == m_customers.end() || email.isEmpty() ? nullptr : &*found;
}

std::optional<QJsonObject> CustomerBook::meetingAt(const PlannedMeeting& meeting, const QString& user, WallTime anchor,
                                                   WallTime now) const {
    if (!meeting.users.isEmpty() && !meeting.users.contains(user))
        return std::nullopt;
    QString start;
    QString end;
    if (meeting.inDays) {
        const auto day = dayOf(now) + std::chrono::days{*meeting.inDays};
        start = dayText(day);
        end = dayText(day + std::chrono::days{1});
    } else {
        const std::chrono::minutes length{meeting.minutes};
        const std::chrono::minutes every{meeting.everyMinutes};
        WallTime at = std::chrono::ceil<std::chrono::minutes>(anchor) + std::chrono::minutes{meeting.inMinutes};
        // The first one that is not over yet.
        if (at + length <= now)
            at += ((now - at - length) / every + 1) * every;
        start = stamp(at, meeting.hasFractionStamps);
        end = stamp(at + length, meeting.hasFractionStamps);
    }
    QJsonArray attendees{QJsonObject{{u"email"_s, user}, {u"organizer"_s, true}, {u"responseStatus"_s, u"accepted"_s}}};
    for (const auto& attendee : meeting.attendees)
        attendees.append(attendee);
    QJsonObject sent{{u"id"_s, meeting.id + u'@' + start},
                     {u"summary"_s, meeting.summary},
                     {u"start"_s, start},
                     {u"end"_s, end},
                     {u"attendees"_s, attendees}};
    if (const auto* const customer = meeting.company ? find({}, {}, meeting.company) : nullptr)
        sent.insert(u"matchedCompany"_s, customer->matchWith(1));
    return sent;
}

QJsonArray CustomerBook::upcoming(const QString& user, WallTime anchor, WallTime now, qsizetype limit) const {
    // A day alone sorts before the times of that day, as calendars have it.
    std::multimap<QString, QJsonObject> meetings;
    for (const auto& planned : m_meetings)
        if (auto meeting = meetingAt(planned, user, anchor, now))
            meetings.emplace((*meeting)[u"start"_s].toString(), std::move(*meeting));
    QJsonArray array;
    for (const auto& [start, meeting] : meetings)
        if (array.size() < limit)
            array.append(meeting);
    return array;
}

QJsonObject CustomerBook::timeline(const Customer& customer, const std::optional<QString>& contact,
                                   const QString& entityId, int daysBack, WallTime now) {
    std::multimap<WallTime, const PastEvent*, std::greater<>> events;
    for (const auto& event : customer.timeline) {
        if (contact && event.contact != contact)
            continue;
        const WallTime at =
            dayOf(now) - std::chrono::days{event.daysAgo} + std::chrono::milliseconds{event.at.msecsSinceStartOfDay()};
        if (at <= now && at >= now - std::chrono::days{daysBack})
            events.emplace(at, &event);
    }
    QJsonArray rows;
    QStringList types;
    for (const auto& [at, event] : events) {
        QJsonObject row{{u"type"_s, event->type}, {u"date"_s, iso8601(at)}, {u"owner"_s, event->owner}};
        if (event->subject)
            row.insert(u"subject"_s, *event->subject);
        if (event->outcome)
            row.insert(u"outcome"_s, *event->outcome);
        rows.append(row);
        if (!types.contains(event->type))
            types.append(event->type);
    }
    types.sort();
    return {
        {u"entityType"_s, contact ? u"contact"_s : u"company"_s}, {u"entityId"_s, entityId}, {u"daysBack"_s, daysBack},
        {u"activityTypes"_s, QJsonArray::fromStringList(types)},  {u"count"_s, rows.size()}, {u"timeline"_s, rows}};
}

}  // namespace corvellan::sandbox
