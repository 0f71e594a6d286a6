#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariant>

#include "Platform/DesktopAppearance.h"

namespace corvellan {

/// What the desktop's settings portal says of light and dark, followed for as long as this lives. No call
/// waits for the portal, and none starts it: one that comes later is asked then. Main thread.
class PortalAppearance final : public QObject, public DesktopAppearance {
    Q_OBJECT

public:
    explicit PortalAppearance(QDBusConnection sessionBus);

    [[nodiscard]] ColorScheme colorScheme() const override { return m_scheme; }

    /// The portal's number, however often it is wrapped. Whatever is none of its numbers is no preference.
    [[nodiscard]] static ColorScheme schemeOf(QVariant value);

private Q_SLOTS:
    void takeChange(const QDBusMessage& message);

private:
    void ask();
    void setScheme(ColorScheme scheme);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    /// The portal's name on the bus that no other program can take; empty before it has answered.
    QString m_portal;
    ColorScheme m_scheme = ColorScheme::noPreference;
};

}  // namespace corvellan
