#pragma once

#include <QString>
#include <QStringView>

namespace corvellan {

class NotificationCenter;

/// The notification that offers to start coaching for a meeting.
struct MeetingReminder {
    /// The button, besides a press on the notification itself, that starts coaching.
    static constexpr QStringView startAction = u"START_COACHING";
    // Under these the answer brings back what the reminder was about.
    static constexpr QStringView meetingIdKey = u"meetingId";
    static constexpr QStringView companyKey = u"company";

    QString meetingId;
    QString summary;
    QString company;

    /// Shows it at once.
    ///
    /// \param identifier that of a reminder still shown replaces that one.
    void show(NotificationCenter& notifications, const QString& identifier) const;
};

}  // namespace corvellan
