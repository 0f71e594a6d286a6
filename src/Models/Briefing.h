#pragma once

#include <cstdint>
#include <optional>
#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <vector>

#include "Base/DateText.h"
#include "LenientValues.h"
#include "Protocol.h"

/// Records of the back-end that joins calendar, CRM and marketing data. Plain values; every function is
/// pure and callable on any thread.
///
/// Most of a record may be missing: optional members are absent when their key is missing or null, and
/// unknown keys are ignored. A required member that is missing, or any other value of the wrong type,
/// fails the whole answer; only `StringOrInt` and `StringOrNumber` are lenient. Encoding leaves absent
/// members out.
namespace corvellan {

/// A match of a company name in one of the customer systems. For lists, `id.stringValue` names it.
struct ResolvedCompany {
    QString source;  ///< The system it came from.
    StringOrInt id;
    QString name;
    double confidence = 0;
    std::optional<QString> domain;
    std::optional<QString> country;
    std::optional<std::int64_t> crmId;
    std::optional<QString> hubspotId;
    std::optional<std::int64_t> orderCount;
    std::optional<double> totalRevenue;

    [[nodiscard]] QByteArray encode() const;
    [[nodiscard]] static Decoded<ResolvedCompany> decode(QByteArrayView json);

    bool operator==(const ResolvedCompany&) const = default;
};

struct MeetingAttendee {
    QString email;
    std::optional<QString> displayName;
    std::optional<bool> organizer;
    std::optional<QString> responseStatus;

    bool operator==(const MeetingAttendee&) const = default;
};

struct CalendarMeeting {
    QString id;
    QString summary;
    QString start;  ///< ISO 8601; a date alone for an event of a whole day.
    QString end;    ///< As `start`.
    std::vector<MeetingAttendee> attendees;
    std::optional<ResolvedCompany> matchedCompany;

    /// `start` as a moment; absent for what is no full date and time.
    [[nodiscard]] std::optional<WallTime> startDate() const;
    /// "9:30 AM – 10:00 AM": both ends as short times, or as they stand where they are no such moment.
    [[nodiscard]] QString timeRange(const DateStyle& style) const;

    [[nodiscard]] QByteArray encode() const;
    [[nodiscard]] static Decoded<CalendarMeeting> decode(QByteArrayView json);

    bool operator==(const CalendarMeeting&) const = default;
};

// The parts of a brief. Their members bear the back-end's own names.

struct SalesBriefIds {
    std::optional<std::int64_t> crmId;
    std::optional<QString> hubspotCompanyId;

    bool operator==(const SalesBriefIds&) const = default;
};

struct SalesBriefCompany {
    std::optional<QString> user_company_name;
    std::optional<QString> user_country;
    std::optional<QString> user_website;
    std::optional<QString> group_name;
    std::optional<QString> seller_name;
    std::optional<QString> industry;

    bool operator==(const SalesBriefCompany&) const = default;
};

struct SalesBriefHubspot {
    std::optional<QString> name;
    std::optional<QString> domain;
    std::optional<QString> country;
    std::optional<QString> industry;
    std::optional<QString> city;
    std::optional<QString> number_of_employees;
    std::optional<QString> annual_revenue;

    bool operator==(const SalesBriefHubspot&) const = default;
};

struct SalesBriefRevenue {
    std::optional<std::int64_t> total_orders;
    std::optional<StringOrNumber> total_usd;
    std::optional<StringOrNumber> last_12mo_usd;
    std::optional<QString> first_order;
    std::optional<QString> last_order;

    bool operator==(const SalesBriefRevenue&) const = default;
};

struct SalesBriefProduct {
    std::optional<QString> product_name;
    std::optional<std::int64_t> total_quantity;
    std::optional<StringOrNumber> total_usd;

    bool operator==(const SalesBriefProduct&) const = default;
};

struct SalesBriefPipeline {
    std::optional<std::int64_t> openDealCount;
    std::optional<StringOrNumber> openDealValue;
    std::optional<std::int64_t> recentWonCount;
    std::optional<StringOrNumber> recentWonValue;

    bool operator==(const SalesBriefPipeline&) const = default;
};

struct SalesBriefContact {
    std::optional<QString> email;
    std::optional<QString> firstname;
    std::optional<QString> lastname;

    bool operator==(const SalesBriefContact&) const = default;
};

struct SalesBriefNote {
    std::optional<QString> id;
    std::optional<QString> body;
    std::optional<QString> hs_timestamp;
    std::optional<QString> author;

    bool operator==(const SalesBriefNote&) const = default;
};

/// Web addresses of the company in the two systems.
struct SalesBriefLinks {
    std::optional<QString> crm;
    std::optional<QString> hubspot;

    bool operator==(const SalesBriefLinks&) const = default;
};

/// What is known of a company before a call.
struct SalesBrief {
    std::optional<SalesBriefIds> ids;
    std::optional<SalesBriefCompany> company;
    std::optional<SalesBriefHubspot> hubspot;
    std::optional<SalesBriefRevenue> revenue;
    std::optional<std::vector<SalesBriefProduct>> topProducts;
    std::optional<SalesBriefPipeline> pipeline;
    std::optional<std::vector<SalesBriefContact>> contacts;
    std::optional<std::vector<SalesBriefNote>> notes;
    std::optional<SalesBriefLinks> links;
    std::optional<QString> error;  ///< The back-end's explanation when it found nothing.

    [[nodiscard]] QByteArray encode() const;
    [[nodiscard]] static Decoded<SalesBrief> decode(QByteArrayView json);

    bool operator==(const SalesBrief&) const = default;
};

struct HandoffHubspot {
    std::optional<QString> noteId;
    std::optional<QString> taskId;

    bool operator==(const HandoffHubspot&) const = default;
};

struct HandoffMeta {
    std::optional<std::int64_t> crmId;
    std::optional<QString> hubspotCompanyId;
    std::optional<QString> dealId;
    std::optional<std::int64_t> deviceCount;
    std::optional<std::int64_t> callCount;
    std::optional<std::int64_t> engagementEmails;
    std::optional<std::int64_t> preCallTaskCount;

    bool operator==(const HandoffMeta&) const = default;
};

/// The note that hands a customer over from one colleague to the next.
struct HandoffResponse {
    QString handoffNote;  ///< Markdown.
    std::optional<HandoffHubspot> hubspot;
    std::optional<HandoffMeta> meta;

    [[nodiscard]] QByteArray encode() const;
    [[nodiscard]] static Decoded<HandoffResponse> decode(QByteArrayView json);

    bool operator==(const HandoffResponse&) const = default;
};

struct TimelineEvent {
    QString eventType;  ///< "type" in JSON.
    QString date;
    std::optional<QString> subject;
    std::optional<QString> outcome;
    QString owner;

    /// Names it in lists. Two events of one type at the same moment share it.
    [[nodiscard]] QString id() const { return date + u'-' + eventType; }

    bool operator==(const TimelineEvent&) const = default;
};

/// What happened between a company or a contact and the colleagues.
struct TimelineResponse {
    QString entityType;
    QString entityId;
    std::int64_t daysBack = 0;
    QStringList activityTypes;
    std::int64_t count = 0;
    std::vector<TimelineEvent> timeline;

    [[nodiscard]] QByteArray encode() const;
    [[nodiscard]] static Decoded<TimelineResponse> decode(QByteArrayView json);

    bool operator==(const TimelineResponse&) const = default;
};

/// A training scenario.
struct ScenarioItem {
    QString key;  ///< Names it in lists and on the wire.
    QString name;
    QString company;
    QString industry;

    [[nodiscard]] QString id() const { return key; }

    [[nodiscard]] QByteArray encode() const;
    [[nodiscard]] static Decoded<ScenarioItem> decode(QByteArrayView json);

    bool operator==(const ScenarioItem&) const = default;
};

// Answers around the records.

/// The list under "events" of the calendar's answer.
[[nodiscard]] Decoded<std::vector<CalendarMeeting>> decodeEvents(QByteArrayView json);
/// The list under "matches" of the company search's answer.
[[nodiscard]] Decoded<std::vector<ResolvedCompany>> decodeMatches(QByteArrayView json);

/// The coaching server's answer that lists training scenarios.
struct ScenariosResponse {
    std::vector<ScenarioItem> scenarios;
    QStringList discTypes;  ///< "disc_types" in JSON; nobody uses them.

    [[nodiscard]] QByteArray encode() const;
    [[nodiscard]] static Decoded<ScenariosResponse> decode(QByteArrayView json);

    bool operator==(const ScenariosResponse&) const = default;
};

}  // namespace corvellan
