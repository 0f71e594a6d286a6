// In place of a desktop's panel: owns the watcher of status notifiers and says that a host is there. It ends when its
// bus does.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QStringList>

namespace {

class NotifierWatcher final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ registeredItems)
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

public:
    [[nodiscard]] QStringList registeredItems() const { return m_items; }
    [[nodiscard]] bool isHostRegistered() const { return m_hasHost; }
    [[nodiscard]] static int protocolVersion() { return 0; }

public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service) {
        // The icon may name a service or a path; the sender is always right.
        m_items.append(message().service());
        Q_EMIT StatusNotifierItemRegistered(service);
    }
    Q_SCRIPTABLE void RegisterStatusNotifierHost(const QString& /*service*/) {
        m_hasHost = true;
        Q_EMIT StatusNotifierHostRegistered();
    }
    /// Not of the protocol: the host that was there goes.
    Q_SCRIPTABLE void DropHost() {
        m_hasHost = false;
        Q_EMIT StatusNotifierHostUnregistered();
    }

Q_SIGNALS:
    Q_SCRIPTABLE void StatusNotifierItemRegistered(const QString& service);
    Q_SCRIPTABLE void StatusNotifierHostRegistered();
    Q_SCRIPTABLE void StatusNotifierHostUnregistered();

private:
    QStringList m_items;
    bool m_hasHost = false;
};

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    NotifierWatcher watcher;
    auto bus = QDBusConnection::sessionBus();
    constexpr auto exported = QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportScriptableSignals |
                              QDBusConnection::ExportAllProperties;
    if (!bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher, exported))
        return 1;
    // With "--late-host" the watcher comes first, as where it is not the panel's own.
    if (!application.arguments().contains(QStringLiteral("--late-host")))
        watcher.RegisterStatusNotifierHost({});
    if (!bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher")))
        return 1;
    return QCoreApplication::exec();
}

#include "NotifierHost.moc"
