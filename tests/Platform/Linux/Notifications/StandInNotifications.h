#pragma once

#include <functional>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariantMap>
#include <stdexcept>
#include <vector>

namespace corvellan::test {

/// A desktop's notification service that records what it is asked to show, and does what a test tells it.
class StandInNotifications final : public QDBusVirtualObject {
public:
    struct Notified {
        QString program;
        uint replaces = 0;
        QString icon;
        QString summary;
        QString body;
        QStringList actions;
        QVariantMap hints;
        int timeout = 0;
    };

    explicit StandInNotifications(QDBusConnection bus) : m_bus(std::move(bus)) {
        if (!m_bus.registerVirtualObject(path(), this) || !m_bus.registerService(name()))
            throw std::runtime_error("the notification service can't be there");
    }
    ~StandInNotifications() override {
        m_bus.unregisterService(name());
        m_bus.unregisterObject(path());
    }
    StandInNotifications(const StandInNotifications&) = delete;
    StandInNotifications& operator=(const StandInNotifications&) = delete;

    std::vector<Notified> notified;
    std::vector<uint> closed;
    QStringList signatures;
    QStringList calls;

    /// Each is what the service says; tests exchange them.
    QVariantList capabilities{QStringList{QStringLiteral("actions"), QStringLiteral("body")}};
    QVariantList information{QStringLiteral("stand-in"), QStringLiteral("test"), QStringLiteral("1"),
                             QStringLiteral("1.2")};
    QVariant inhibited;
    uint nextNumber = 7;
    std::function<void(const QDBusMessage&)> notify = [this](const QDBusMessage& call) {
        reply(call, {notified.back().replaces != 0 ? notified.back().replaces : nextNumber++});
    };

    static QString path() { return QStringLiteral("/org/freedesktop/Notifications"); }
    static QString name() { return QStringLiteral("org.freedesktop.Notifications"); }

    void reply(const QDBusMessage& call, const QVariantList& arguments) { m_bus.send(call.createReply(arguments)); }
    void refuse(const QDBusMessage& call) { m_bus.send(call.createErrorReply(QDBusError::Failed, {})); }
    void tell(const QString& signalName, const QVariantList& arguments) {
        auto signal = QDBusMessage::createSignal(path(), name(), signalName);
        signal.setArguments(arguments);
        m_bus.send(signal);
    }
    void act(uint number, const QString& action) { tell(QStringLiteral("ActionInvoked"), {number, action}); }
    void close(uint number) { tell(QStringLiteral("NotificationClosed"), {number, 2U}); }

    [[nodiscard]] QString connectionName() const { return m_bus.name(); }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        const auto arguments = message.arguments();
        calls.append(message.member());
        if (message.member() == u"GetCapabilities") {
            reply(message, capabilities);
        } else if (message.member() == u"GetServerInformation") {
            reply(message, information);
        } else if (message.member() == u"Get") {
            if (inhibited.isValid())
                reply(message, {QVariant::fromValue(QDBusVariant{inhibited})});
            else
                refuse(message);
        } else if (message.member() == u"CloseNotification") {
            closed.push_back(arguments.at(0).toUInt());
        } else if (message.member() == u"Notify") {
            signatures.append(message.signature());
            notified.push_back({.program = arguments.at(0).toString(),
                                .replaces = arguments.at(1).toUInt(),
                                .icon = arguments.at(2).toString(),
                                .summary = arguments.at(3).toString(),
                                .body = arguments.at(4).toString(),
                                .actions = arguments.at(5).toStringList(),
                                .hints = qdbus_cast<QVariantMap>(arguments.at(6)),
                                .timeout = arguments.at(7).toInt()});
            notify(message);
        }
        return true;
    }

private:
    QDBusConnection m_bus;
};

}  // namespace corvellan::test
