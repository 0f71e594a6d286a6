#pragma once

#include <cstdint>
#include <optional>
#include <QString>
#include <vector>

/// Records of the briefing back-end that the session holds for the screens. Plain values.
namespace corvellan {

/// A match of a company name in one of the customer systems.
struct ResolvedCompany {
    QString source;  ///< The system it came from.
    QString id;
    QString name;
    double confidence = 0;
    std::optional<QString> domain;
    std::optional<QString> country;
    std::optional<std::int64_t> crmId;
    std::optional<QString> hubspotId;
    std::optional<std::int64_t> orderCount;
    std::optional<double> totalRevenue;

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
    QString start;  ///< ISO 8601.
    QString end;    ///< ISO 8601.
    std::vector<MeetingAttendee> attendees;
    std::optional<ResolvedCompany> matchedCompany;

    bool operator==(const CalendarMeeting&) const = default;
};

struct HandoffResponse {
    QString handoffNote;  ///< Markdown.

    bool operator==(const HandoffResponse&) const = default;
};

}  // namespace corvellan
