#include "MeetingReminder.h"

#include "Platform/Notifications.h"

namespace corvellan {

using namespace Qt::StringLiterals;

void MeetingReminder::show(NotificationCenter& notifications, const QString& identifier) const {
    const QString category = u"MEETING_REMINDER"_s;
    notifications.setCategory({
        .identifier = category,
        .actions = {{.identifier = startAction.toString(), .title = u"Start Coaching"_s, .bringsToForeground = true}},
    });
    notifications.add({
        .identifier = identifier,
        .title = u"Meeting starting soon"_s,
        .subtitle = summary,
        .body = u"Start coaching with Corvellan Bram?"_s,
        .categoryIdentifier = category,
        .playsDefaultSound = true,
        .userInfo = {{meetingIdKey.toString(), meetingId}, {companyKey.toString(), company}},
    });
}

}  // namespace corvellan
