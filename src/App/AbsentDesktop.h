#pragma once

#include <QWindow>

#include "Platform/Notifications.h"
#include "Platform/WindowActivation.h"

/// What stands behind seams of the desktop that this version does not fill. Each answers honestly that
/// nothing is there.
namespace corvellan {

class AbsentNotificationCenter final : public NotificationCenter {
public:
    QCoro::Task<NotificationAuthorization> requestAuthorization() override { return authorization(); }
    QCoro::Task<NotificationAuthorization> authorization() override { co_return NotificationAuthorization::unknown; }
    void setCategory(NotificationCategory) override {}
    void add(NotificationRequest) override {}
};

class PlainWindowActivation final : public WindowActivation {
public:
    void activateIgnoringOtherApps(QWindow& window, const QString&) override { window.requestActivate(); }
};

}  // namespace corvellan
