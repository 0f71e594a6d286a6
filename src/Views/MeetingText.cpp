#include "MeetingText.h"

#include "Money.h"

namespace corvellan::meeting {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t mostAttendees = 6;

}  // namespace

QString nameOf(const MeetingAttendee& attendee) {
    return attendee.displayName.value_or(attendee.email.section(u'@', 0, 0));
}

QVariantList attendees(const CalendarMeeting& meeting) {
    QVariantList rows;
    for (const MeetingAttendee& attendee : meeting.attendees) {
        if (static_cast<std::size_t>(rows.size()) == mostAttendees)
            break;
        rows.append(QVariantMap{{u"name"_s, nameOf(attendee)}, {u"email"_s, attendee.email}});
    }
    return rows;
}

QString moreAttendees(const CalendarMeeting& meeting) {
    const std::size_t count = meeting.attendees.size();
    return count > mostAttendees ? u"+%1 more"_s.arg(count - mostAttendees) : QString{};
}

QString companyName(const CalendarMeeting& meeting) {
    return meeting.matchedCompany ? meeting.matchedCompany->name : QString{};
}

QString companyCountry(const CalendarMeeting& meeting) {
    const QString country = meeting.matchedCompany ? meeting.matchedCompany->country.value_or(QString{}) : QString{};
    return country.isEmpty() ? QString{} : u"· "_s + country;
}

QString companyRevenue(const CalendarMeeting& meeting) {
    const double revenue = meeting.matchedCompany ? meeting.matchedCompany->totalRevenue.value_or(0) : 0;
    return revenue > 0 ? u"· "_s + formatUSD(revenue) : QString{};
}

}  // namespace corvellan::meeting
