#include "MeetingReminders.h"

#include <algorithm>

#include "AppDelegate.h"
#include "Base/Iso8601.h"
#include "Base/Log.h"
#include "Platform/Notifications.h"
#include "Shell/MeetingReminder.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan {

namespace {

constexpr auto reminderLead = 120s;

std::optional<QString> valueOf(const QMap<QString, QString>& userInfo, QStringView key) {
    const auto found = userInfo.constFind(key.toString());
    return found == userInfo.cend() ? std::nullopt : std::optional{*found};
}

}  // namespace

const CalendarMeeting* meetingToRemindOf(const std::vector<CalendarMeeting>& meetings, WallTime now,
                                         const std::optional<QString>& lastNotifiedId) {
    const auto found = std::ranges::find_if(meetings, [&](const CalendarMeeting& meeting) {
        const auto start = parseIso8601(meeting.start);
        return start && *start > now && *start - now <= reminderLead && meeting.id != lastNotifiedId;
    });
    return found == meetings.end() ? nullptr : &*found;
}

void AppDelegate::checkUpcomingMeetingNotification() {
    if (!m_environment.session.preferences.boolean(u"meetingReminders"_s).value_or(true))
        return;
    if (m_viewModel->isSessionActive() || !m_viewModel->userEmail())
        return;
    const auto* const meeting = meetingToRemindOf(m_viewModel->upcomingMeetings(),
                                                  m_environment.session.clock.wallNow(), m_lastNotifiedMeetingId);
    if (!meeting)
        return;
    m_lastNotifiedMeetingId = meeting->id;
    showMeetingNotification(*meeting);
}

void AppDelegate::showMeetingNotification(const CalendarMeeting& meeting) {
    auto& notifications = m_environment.desktop.notifications;
    static_cast<void>(notifications.requestAuthorization());
    const MeetingReminder reminder{
        .meetingId = meeting.id,
        .summary = meeting.summary,
        .company = meeting.matchedCompany ? meeting.matchedCompany->name : meeting.summary,
    };
    reminder.show(notifications, u"meeting-"_s + meeting.id);
}

void AppDelegate::userNotificationCenterDidReceive(const NotificationResponse& response) {
    shellLog(u"Notification action: "_s + response.actionIdentifier);
    if (response.actionIdentifier != MeetingReminder::startAction &&
        response.actionIdentifier != defaultNotificationAction)
        return;
    const auto company = valueOf(response.userInfo, MeetingReminder::companyKey);
    const auto meetingId = valueOf(response.userInfo, MeetingReminder::meetingIdKey);
    shellLog(u"Starting coaching from notification: company="_s + company.value_or(u"nil"_s));
    bringToFront(response.activationToken);
    m_viewModel->startSession({.company = company, .calendarEventId = meetingId});
}

}  // namespace corvellan
