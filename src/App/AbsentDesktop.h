#pragma once

#include <memory>
#include <QWindow>

#include "Platform/GlobalKeys.h"
#include "Platform/Notifications.h"
#include "Platform/WindowActivation.h"

/// What stands behind seams of the desktop that this version does not fill. Each answers honestly that
/// nothing is there.
namespace corvellan {

class AbsentGlobalKeys final : public GlobalKeys {
public:
    std::unique_ptr<GlobalKeyMonitor> addGlobalMonitor(std::function<void(const KeyDown&)>) override {
        return std::make_unique<Monitor>();
    }

private:
    class Monitor final : public GlobalKeyMonitor {
    public:
        [[nodiscard]] GlobalKeyWatch watch() const override { return GlobalKeyWatch::unavailable; }
        [[nodiscard]] QString explanation() const override {
            return QStringLiteral("Keys pressed in other programs do not reach this one.");
        }
    };
};

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
