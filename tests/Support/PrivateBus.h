#pragma once

#include <memory>
#include <QDBusConnection>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <stdexcept>

#include "ChildProcess.h"
#include "TestLoop.h"
#include "UnixSocket.h"

namespace corvellan::test {

/// A message bus of the test's own, on which nothing is started by itself: whoever is there was put there by the
/// test. Ends with the object, and with the process if that crashes.
class PrivateBus {
public:
    PrivateBus() {
        QFile configuration{m_folder.filePath(QStringLiteral("bus.conf"))};
        if (!configuration.open(QIODevice::WriteOnly))
            throw std::runtime_error("can't write the bus's configuration");
        configuration.write(
            "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
            " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
            "<busconfig><type>session</type><listen>" +
            address().toLatin1() +
            "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow send_destination=\"*\"/>"
            "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>\n");
        configuration.close();
        m_daemon = std::make_unique<ChildProcess>(
            std::vector<std::string>{"dbus-daemon", "--config-file=" + configuration.fileName().toStdString(),
                                     "--nofork", "--nopidfile", "--nosyslog"},
            ChildProcess::Environment{}, m_folder.filePath(QStringLiteral("bus.log")).toStdString());
        if (!spinUntil([this] { return isListeningAt(socketPath()); }))
            throw std::runtime_error("the bus did not start");
    }
    ~PrivateBus() {
        for (const QString& name : m_connections)
            QDBusConnection::disconnectFromBus(name);
    }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] QString address() const {
        // The folder carries the test program's name, and an address takes few characters as they are.
        return QStringLiteral("unix:path=") + QString::fromLatin1(socketPath().toPercentEncoding("/", "~"));
    }

    /// A new connection at each call, as of a program of its own.
    [[nodiscard]] QDBusConnection connect() {
        static int number = 0;
        m_connections.append(QStringLiteral("private-bus-%1").arg(++number));
        return QDBusConnection::connectToBus(address(), m_connections.last());
    }

    /// As a crash would.
    void kill() { m_daemon->kill(); }

private:
    [[nodiscard]] QByteArray socketPath() const { return m_folder.filePath(QStringLiteral("bus")).toUtf8(); }

    QTemporaryDir m_folder;
    std::unique_ptr<ChildProcess> m_daemon;
    QStringList m_connections;
};

}  // namespace corvellan::test
