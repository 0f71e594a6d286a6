#pragma once

#include <cstdint>
#include <deque>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QHash>
#include <QObject>
#include <vector>

#include "Platform/Notifications.h"

namespace corvellan {

/// Notifications through `org.freedesktop.Notifications`, the service that every Linux desktop has for them.
/// Nothing waits for it; one that is absent, frozen or confused shows nothing, and that is all.
///
/// A Linux desktop has no consent to ask for, so that `requestAuthorization` asks nothing. Both calls look at
/// what is there: `authorized` where the service answers, `denied` where it says that it holds notifications
/// back for now ("do not disturb", which few services tell), `unknown` where no service answers as it should.
/// `notDetermined` and `provisional` never come.
class DesktopNotifications final : public QObject, public NotificationCenter {
    Q_OBJECT

public:
    /// \param bus the session's.
    explicit DesktopNotifications(const QDBusConnection& bus);
    DesktopNotifications(const DesktopNotifications&) = delete;
    DesktopNotifications& operator=(const DesktopNotifications&) = delete;

    QCoro::Task<NotificationAuthorization> requestAuthorization() override { return authorization(); }
    [[nodiscard]] QCoro::Task<NotificationAuthorization> authorization() override;

    void setCategory(NotificationCategory category) override;
    void add(NotificationRequest request) override;

private slots:
    void takeActivationToken(const QDBusMessage& message);
    void takeAction(const QDBusMessage& message);
    void takeClosed(const QDBusMessage& message);

private:
    /// One on the screen, or in the desktop's list of them.
    struct Shown {
        QString service;  ///< Its name on the bus that no other program can take.
        std::uint32_t number = 0;
        QString identifier;
        QStringList actions;
        QMap<QString, QString> userInfo;
        QString activationToken;
    };
    using Answer = void (DesktopNotifications::*)(const QDBusMessage& message);

    void showNext();
    void takeCapabilities(const QDBusMessage& reply);
    void takeShown(const QDBusMessage& reply);
    void ownerChanged(const QString& oldOwner);
    [[nodiscard]] std::vector<Shown>::iterator find(const QDBusMessage& message);
    void keepForLater(const QDBusMessage& message, Answer answer);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_ownerWatcher;
    QHash<QString, NotificationCategory> m_categories;
    std::vector<Shown> m_shown;

    /// One at a time, the first of these being under way, so that one that replaces another finds its number.
    std::deque<NotificationRequest> m_requests;
    QStringList m_offeredActions;
    /// Who is being asked to show it.
    QString m_service;
    /// The user may be quicker than the reply that tells the number.
    struct EarlyAnswer {
        QDBusMessage message;
        Answer answer = nullptr;
    };
    std::vector<EarlyAnswer> m_early;
};

}  // namespace corvellan
