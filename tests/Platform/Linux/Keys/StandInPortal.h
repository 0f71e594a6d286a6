#pragma once

#include <functional>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariantMap>
#include <stdexcept>

namespace corvellan::test {

/// As `a(sa{sv})` holds it.
struct ListedShortcut {
    QString identifier;
    QVariantMap properties;
};

inline QDBusArgument& operator<<(QDBusArgument& argument, const ListedShortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.identifier << shortcut.properties;
    argument.endStructure();
    return argument;
}

inline const QDBusArgument& operator>>(const QDBusArgument& argument, ListedShortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.identifier >> shortcut.properties;
    argument.endStructure();
    return argument;
}

/// A desktop's portal for global shortcuts that grants everything, unless it was told otherwise.
class StandInPortal final : public QDBusVirtualObject {
public:
    explicit StandInPortal(QDBusConnection bus) : m_bus(std::move(bus)) {
        qDBusRegisterMetaType<ListedShortcut>();
        qDBusRegisterMetaType<QList<ListedShortcut>>();
        if (!m_bus.registerVirtualObject(path(), this, QDBusConnection::SubPath) ||
            !m_bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")))
            throw std::runtime_error("the portal can't be there");
    }
    ~StandInPortal() override {
        m_bus.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
        m_bus.unregisterObject(path());
    }
    StandInPortal(const StandInPortal&) = delete;
    StandInPortal& operator=(const StandInPortal&) = delete;

    /// The members that were called, in order.
    QStringList calls;
    QVariantList registration;
    QVariantList binding;
    QStringList closedPaths;
    /// Each is what the portal says at that step; tests exchange them. Empty means no answer at all.
    QVariant version = 2U;
    std::function<void(const QDBusMessage&)> createSession = [this](const QDBusMessage& call) { grantSession(call); };
    std::function<void(const QDBusMessage&)> bindShortcuts = [this](const QDBusMessage& call) { grantShortcut(call); };
    QString trigger = QStringLiteral("Super+Shift+J");

    static QString path() { return QStringLiteral("/org/freedesktop/portal/desktop"); }
    [[nodiscard]] QString session() const { return m_session; }

    void reply(const QDBusMessage& call, const QVariantList& arguments) { m_bus.send(call.createReply(arguments)); }
    void refuse(const QDBusMessage& call) { m_bus.send(call.createErrorReply(QDBusError::AccessDenied, {})); }
    void accept(const QDBusMessage& call) { reply(call, {QVariant::fromValue(QDBusObjectPath{requestPath(call)})}); }
    void respond(const QDBusMessage& call, const QVariantList& arguments) {
        emitSignal(requestPath(call), QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"),
                   arguments);
    }

    void grantSession(const QDBusMessage& call) {
        accept(call);
        respond(call, {0U, QVariantMap{{QStringLiteral("session_handle"), sessionFor(call)}}});
    }
    /// Remembers what a well-formed session of this caller is called.
    QString sessionFor(const QDBusMessage& call) {
        m_session = path() + QStringLiteral("/session/") + senderOf(call) + u'/' +
                    optionsOf(call).value(QStringLiteral("session_handle_token")).toString();
        return m_session;
    }
    void grantShortcut(const QDBusMessage& call) {
        accept(call);
        respond(call, {0U, QVariantMap{{QStringLiteral("shortcuts"), listed(trigger)}}});
    }
    [[nodiscard]] static QVariant listed(const QString& trigger,
                                         const QString& identifier = QStringLiteral("start-or-end-coaching")) {
        return QVariant::fromValue(QList<ListedShortcut>{
            {.identifier = QStringLiteral("another"), .properties = {}},
            {.identifier = identifier, .properties = {{QStringLiteral("trigger_description"), trigger}}}});
    }

    void activate(const QVariantMap& options = {}) { shortcutSignal(QStringLiteral("Activated"), arguments(options)); }
    void deactivate() { shortcutSignal(QStringLiteral("Deactivated"), arguments({})); }
    void shortcutSignal(const QString& name, const QVariantList& arguments) {
        emitSignal(path(), QStringLiteral("org.freedesktop.portal.GlobalShortcuts"), name, arguments);
    }
    [[nodiscard]] QVariantList arguments(const QVariantMap& options) const {
        return {QVariant::fromValue(QDBusObjectPath{m_session}), QStringLiteral("start-or-end-coaching"), quint64{1234},
                options};
    }
    void closeSession() {
        emitSignal(m_session, QStringLiteral("org.freedesktop.portal.Session"), QStringLiteral("Closed"),
                   {QVariantMap{}});
    }
    void emitSignal(const QString& from, const QString& interface, const QString& name, const QVariantList& arguments) {
        auto signal = QDBusMessage::createSignal(from, interface, name);
        signal.setArguments(arguments);
        m_bus.send(signal);
    }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        calls.append(message.member());
        if (message.member() == u"Register") {
            registration = message.arguments();
            m_bus.send(message.createErrorReply(QDBusError::UnknownInterface, {}));
        } else if (message.member() == u"Get") {
            if (version.isValid())
                reply(message, {QVariant::fromValue(QDBusVariant{version})});
            else
                m_bus.send(message.createErrorReply(QDBusError::InvalidArgs, {}));
        } else if (message.member() == u"CreateSession") {
            createSession(message);
        } else if (message.member() == u"BindShortcuts") {
            binding = message.arguments();
            bindShortcuts(message);
        } else if (message.member() == u"Close") {
            closedPaths.append(message.path());
        }
        return true;
    }

private:
    static QString senderOf(const QDBusMessage& call) {
        QString sender = call.service().sliced(1);
        return sender.replace(u'.', u'_');
    }
    static QVariantMap optionsOf(const QDBusMessage& call) {
        return qdbus_cast<QVariantMap>(call.arguments().constLast());
    }
    static QString requestPath(const QDBusMessage& call) {
        return path() + QStringLiteral("/request/") + senderOf(call) + u'/' +
               optionsOf(call).value(QStringLiteral("handle_token")).toString();
    }

    QDBusConnection m_bus;
    QString m_session;
};

}  // namespace corvellan::test
