#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTime>
#include <vector>

#include "Base/Clock.h"
#include "Models/Briefing.h"

namespace corvellan::sandbox {

/// Something that happened with a customer, so many days ago.
struct PastEvent {
    QString type;
    int daysAgo = 0;
    QTime at;  ///< UTC.
    std::optional<QString> subject;
    std::optional<QString> outcome;
    QString owner;
    std::optional<QString> contact;  ///< Whose it is, by e-mail address.
};

/// One customer as the back-end knows it. The parts that are JSON go out as the data file has them: numbers as
/// numbers, as texts, as words.
struct Customer {
    QString name;
    QStringList aliases;
    QJsonObject match;  ///< A `ResolvedCompany`, but for name and confidence.
    QJsonObject brief;
    std::optional<QJsonObject> handoff;  ///< Empty where nobody has written one.
    std::vector<PastEvent> timeline;

    [[nodiscard]] std::optional<std::int64_t> crmId() const;
    [[nodiscard]] std::optional<QString> hubspotId() const;
    /// The match with the name, for a search that found it with this confidence from 0 to 1.
    [[nodiscard]] QJsonObject matchWith(double confidence) const;
};

/// A meeting that comes again and again, so that there is always a next one.
struct PlannedMeeting {
    QString id;
    QString summary;
    int inMinutes = 0;  ///< From the sandbox's start.
    int minutes = 30;
    int everyMinutes = 480;
    std::optional<int> inDays;       ///< A whole day, so many days from today, in place of the minutes.
    bool hasFractionStamps = false;  ///< "10:00:00.000Z" and not "10:00:00Z".
    QStringList users;               ///< Whose it is; everybody's when empty.
    std::optional<QString> company;
    QJsonArray attendees;  ///< Without the user, who invites.
};

/// What the back-end knows of customers and meetings, read from one file. One thread.
class CustomerBook {
public:
    /// The one that comes along.
    [[nodiscard]] static CustomerBook shipped();
    /// Everything that goes out later decodes as what it stands for. The error is a sentence that names the
    /// place.
    [[nodiscard]] static std::expected<CustomerBook, QString> parse(const QByteArray& json);
    [[nodiscard]] static std::expected<CustomerBook, QString> load(const QString& path);

    /// Matches of a name, the best first: every word of it begins a word of the customer's name, of another
    /// name of it, or of its domain. Nothing matches an empty name.
    [[nodiscard]] QJsonArray search(const QString& name, qsizetype limit) const;

    /// By the first of these that is given: HubSpot's number, the CRM's number, the name. Null when there is none.
    [[nodiscard]] const Customer* find(const std::optional<QString>& hubspotId, std::optional<std::int64_t> crmId,
                                       const std::optional<QString>& name) const;
    /// By a contact's e-mail address in the timelines and briefs. Null when nobody has it.
    [[nodiscard]] const Customer* findByContact(const QString& email) const;

    /// The user's next meetings, those under way included, the earliest first.
    ///
    /// \param anchor what the meetings' minutes count from.
    [[nodiscard]] QJsonArray upcoming(const QString& user, WallTime anchor, WallTime now, qsizetype limit) const;

    /// A `TimelineResponse` of these days, the newest first.
    ///
    /// \param contact only this one's events when given.
    [[nodiscard]] static QJsonObject timeline(const Customer& customer, const std::optional<QString>& contact,
                                              const QString& entityId, int daysBack, WallTime now);

    [[nodiscard]] const std::vector<Customer>& customers() const { return m_customers; }

private:
    [[nodiscard]] std::expected<void, QString> readCustomers(const QJsonArray& customers);
    [[nodiscard]] std::expected<void, QString> readMeetings(const QJsonArray& meetings);
    [[nodiscard]] std::optional<QJsonObject> meetingAt(const PlannedMeeting& meeting, const QString& user,
                                                       WallTime anchor, WallTime now) const;

    std::vector<Customer> m_customers;
    std::vector<PlannedMeeting> m_meetings;
};

}  // namespace corvellan::sandbox
