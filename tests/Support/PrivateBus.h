#pragma once

#include <memory>
#include <QDBusConnection>
#include <QFile>
#include <QTemporaryDir>
#include <stdexcept>

#include "ChildProcess.h"
#include "TestLoop.h"

namespace corvellan::test {

/// A D-Bus daemon of the test's own, which starts no services. Ends with the object, and with the process if that
/// crashes.
class PrivateBus {
public:
    PrivateBus() {
        QFile file{m_folder.filePath(QStringLiteral("bus.conf"))};
        if (!file.open(QIODevice::WriteOnly))
            throw std::runtime_error("can't write the bus's configuration");
        file.write("<busconfig><type>session</type><listen>" + address().toUtf8() +
                   "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                   "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
        file.close();
        m_daemon = std::make_unique<ChildProcess>(
            std::vector<std::string>{"dbus-daemon", "--nofork", "--config-file=" + file.fileName().toStdString()},
            ChildProcess::Environment{}, m_folder.filePath(QStringLiteral("bus.log")).toStdString());
        const bool isAnswering = spinUntil([this] {
            if (connect(m_name).isConnected())
                return true;
            QDBusConnection::disconnectFromBus(m_name);
            return false;
        });
        if (!isAnswering)
            throw std::runtime_error("the bus did not start");
    }
    ~PrivateBus() { QDBusConnection::disconnectFromBus(m_name); }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] QString address() const {
        return QStringLiteral("unix:path=") + m_folder.filePath(QStringLiteral("socket"));
    }
    /// The connection of whoever is tested.
    [[nodiscard]] QDBusConnection connection() const { return QDBusConnection{m_name}; }
    /// Another one, as another program would have.
    [[nodiscard]] QDBusConnection connect(const QString& name) const {
        return QDBusConnection::connectToBus(address(), name);
    }
    /// As a crash would.
    void kill() { m_daemon.reset(); }

private:
    QTemporaryDir m_folder;
    const QString m_name = QStringLiteral("private bus ") + m_folder.path();
    std::unique_ptr<ChildProcess> m_daemon;
};

}  // namespace corvellan::test
