#pragma once

#include <functional>
#include <optional>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include "Base/Clock.h"
#include "Platform/GlobalKeys.h"

namespace corvellan {

/// One session with the portal. The steps, each of which begins when the one before it was answered: tell who
/// asks, look whether there is a portal for shortcuts, create a session, bind the shortcut.
///
/// Whatever comes over the bus counts only if the portal itself has sent it, in the form that was agreed.
class PortalKeyMonitor final : public QObject, public GlobalKeyMonitor {
    Q_OBJECT

public:
    PortalKeyMonitor(const QDBusConnection& bus, Clock& clock, std::function<void(const KeyDown&)> onKeyDown);
    /// Closes the session, and a dialog of the desktop that still waits for the user.
    ~PortalKeyMonitor() override;
    PortalKeyMonitor(const PortalKeyMonitor&) = delete;
    PortalKeyMonitor& operator=(const PortalKeyMonitor&) = delete;

    [[nodiscard]] GlobalKeyWatch watch() const override { return m_watch; }
    [[nodiscard]] QString explanation() const override { return m_explanation; }

private slots:
    void takeResponse(const QDBusMessage& message);
    void takeActivated(const QDBusMessage& message);
    void takeDeactivated(const QDBusMessage& message);
    void takeShortcutsChanged(const QDBusMessage& message);
    void takeSessionClosed(const QDBusMessage& message);
    void takeDisconnected();

private:
    enum class Step { creatingSession, binding, bound, ended };
    using OnReply = void (PortalKeyMonitor::*)(const QDBusMessage& reply);

    void start();
    void call(const QDBusMessage& message, OnReply onReply);
    void takeRegistered(const QDBusMessage& reply);
    void takeVersion(const QDBusMessage& reply);
    void createSession();
    void bindShortcut(const QVariantMap& results);
    void takeBinding(const QVariantMap& results);
    void takeRequested(const QDBusMessage& reply);
    void ownerChanged(const QString& oldOwner, const QString& newOwner);

    [[nodiscard]] QString beginRequest();
    void endRequest();
    void endSession();
    [[nodiscard]] bool isOurShortcut(const QDBusMessage& message) const;
    void set(GlobalKeyWatch watch, const QString& explanation);
    void fail(const QString& reason);

    QDBusConnection m_bus;
    Clock& m_clock;
    const std::function<void(const KeyDown&)> m_onKeyDown;
    QDBusServiceWatcher m_ownerWatcher;
    GlobalKeyWatch m_watch = GlobalKeyWatch::starting;
    QString m_explanation;

    Step m_step = Step::ended;
    /// Counts the attempts: an answer to an earlier one says nothing about this one.
    int m_attempt = 0;
    /// The portal's name on the bus that no other program can take; empty before it has answered.
    QString m_portal;
    /// Where the answer to the open request will come from; empty when there is none.
    QString m_requestPath;
    QString m_sessionPath;
    bool m_mayAskAgain = false;

    bool m_isDown = false;
    std::optional<MonotonicTime> m_lastActivated;
};

}  // namespace corvellan
