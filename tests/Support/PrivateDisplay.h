#pragma once

#include <memory>
#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>
#include <stdexcept>

#include "ChildProcess.h"
#include "TestLoop.h"

namespace corvellan::test {

/// An X display of the test's own with a window manager. Both end with the object, and with the process if that
/// crashes. This process's own windows don't go there: they are for what connects by `name()`.
class PrivateDisplay {
public:
    /// \param options more of the server's.
    explicit PrivateDisplay(const std::vector<std::string>& options = {}) {
        // One that may reset does so when its last client goes, under a program that is just coming.
        std::vector<std::string> command{"Xvfb",       "-displayfd", "1",   "-screen", "0",
                                         "640x480x24", "-nolisten",  "tcp", "-noreset"};
        command.insert(command.end(), options.begin(), options.end());
        m_server = std::make_unique<ChildProcess>(command, ChildProcess::Environment{}, path("server.log"));
        // The number comes in a line of its own, between whatever else the server has to say.
        if (!spinUntil([this] { return !readNumber().isEmpty() || !m_server->isRunning(); },
                       std::chrono::seconds{30}) ||
            readNumber().isEmpty())
            throw std::runtime_error("the display did not start");
        m_name = ':' + readNumber();
        // It runs the command once it manages; what the root window tells comes too early, and a window that is
        // mapped in between stays unmanaged.
        m_manager = std::make_unique<ChildProcess>(
            std::vector<std::string>{"openbox", "--sm-disable", "--startup", "touch " + path("managed")}, environment(),
            path("manager.log"));
        if (!spinUntil([this] { return QFile::exists(QString::fromStdString(path("managed"))); },
                       std::chrono::seconds{30}))
            throw std::runtime_error("the window manager did not start");
    }
    PrivateDisplay(const PrivateDisplay&) = delete;
    PrivateDisplay& operator=(const PrivateDisplay&) = delete;

    [[nodiscard]] QByteArray name() const { return m_name; }

    /// As a crash would.
    void kill() { m_server->kill(); }

    /// Runs a program on the display to its end.
    void run(const std::vector<std::string>& command) {
        if (!ChildProcess{command, environment(), path("run.log")}.finish())
            throw std::runtime_error(command[0] + " failed");
    }

    /// Starts a program on the display; it ends with what is returned.
    [[nodiscard]] std::unique_ptr<ChildProcess> start(const std::vector<std::string>& command) {
        return std::make_unique<ChildProcess>(command, environment(), path("start.log"));
    }

private:
    [[nodiscard]] std::string path(const char* name) const {
        return m_folder.filePath(QString::fromLatin1(name)).toStdString();
    }

    [[nodiscard]] ChildProcess::Environment environment() const {
        return {{"DISPLAY", m_name.toStdString()}, {"HOME", path("")}, {"XDG_CACHE_HOME", path("cache")}};
    }

    [[nodiscard]] QByteArray readNumber() const {
        QFile file{QString::fromStdString(path("server.log"))};
        if (!file.open(QIODevice::ReadOnly))
            return {};
        while (!file.atEnd()) {
            const QByteArray line = file.readLine();
            bool isNumber = false;
            line.trimmed().toUInt(&isNumber);
            if (isNumber && line.endsWith('\n'))
                return line.trimmed();
        }
        return {};
    }

    QTemporaryDir m_folder;
    QByteArray m_name;
    std::unique_ptr<ChildProcess> m_server;
    std::unique_ptr<ChildProcess> m_manager;
};

}  // namespace corvellan::test
