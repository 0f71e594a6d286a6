#pragma once

#include <functional>
#include <QCoroTask>
#include <QMap>
#include <QString>
#include <vector>

namespace corvellan {

/// What the user did to a notification as a whole: not one of its buttons, but the notification itself.
inline constexpr QStringView defaultNotificationAction = u"default";

struct NotificationAction {
    QString identifier;
    QString title;
    bool bringsToForeground = false;
};

/// The buttons that notifications of this category carry.
struct NotificationCategory {
    QString identifier;
    std::vector<NotificationAction> actions;
};

struct NotificationRequest {
    /// A request with the identifier of one that is still shown replaces it.
    QString identifier;
    QString title;
    QString subtitle;
    QString body;
    QString categoryIdentifier;
    bool playsDefaultSound = false;
    /// Comes back with the answer.
    QMap<QString, QString> userInfo;
};

struct NotificationResponse {
    /// One of the category's actions, or `defaultNotificationAction`.
    QString actionIdentifier;
    QMap<QString, QString> userInfo;
    /// Lets a window come to the front on desktops that want to see a reason for it. May be empty.
    QString activationToken;
};

/// Whether the desktop shows this program's notifications.
enum class NotificationAuthorization { notDetermined, denied, authorized, provisional, unknown };

/// The desktop's notifications. A call that fails has no effect and reports nothing. Main thread.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    /// Asks whether alerts and sounds may be shown. Answers with what holds afterwards.
    virtual QCoro::Task<NotificationAuthorization> requestAuthorization() = 0;
    [[nodiscard]] virtual QCoro::Task<NotificationAuthorization> authorization() = 0;

    virtual void setCategory(NotificationCategory category) = 0;
    /// Shows it at once, also over the program's own window.
    virtual void add(NotificationRequest request) = 0;

    /// The user answered a notification of this run. At most once for each.
    std::function<void(const NotificationResponse&)> didReceive;
};

}  // namespace corvellan
