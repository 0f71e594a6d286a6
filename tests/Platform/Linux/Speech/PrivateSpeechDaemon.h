#pragma once

#include <QDir>
#include <QTemporaryDir>

#include "Support/ChildProcess.h"
#include "Support/UnixSocket.h"

namespace corvellan::test {

/// A Speech Dispatcher of the test's own, with the modules that are installed and the sound server of the
/// moment. While it lives this process's clients talk to it alone; afterwards they find none.
class PrivateSpeechDaemon {
public:
    PrivateSpeechDaemon() {
        qputenv("SPEECHD_ADDRESS", "unix_socket:" + socketPath());
        start();
    }
    ~PrivateSpeechDaemon() { kill(); }
    PrivateSpeechDaemon(const PrivateSpeechDaemon&) = delete;
    PrivateSpeechDaemon& operator=(const PrivateSpeechDaemon&) = delete;

    void start() {
        QFile::remove(QString::fromUtf8(socketPath()));
        m_daemon = std::make_unique<ChildProcess>(
            std::vector<std::string>{"speech-dispatcher", "--run-single", "--timeout", "0", "--communication-method",
                                     "unix_socket", "--socket-path", socketPath().toStdString(), "--pid-file",
                                     path("pid"), "--log-dir", path("log")},
            ChildProcess::Environment{{"HOME", path("")}, {"XDG_RUNTIME_DIR", path("")}, {"XDG_CONFIG_HOME", path("")}},
            path("output"));
        if (!spinUntil([this] { return isListeningAt(socketPath()); }))
            throw std::runtime_error("the speech daemon did not start");
    }
    /// As a crash would.
    void kill() { m_daemon.reset(); }
    /// Connections are accepted by the kernel and never answered.
    void freeze() { m_daemon->signal(SIGSTOP); }

private:
    [[nodiscard]] std::string path(const std::string& name) const {
        return m_folder.filePath(QString::fromStdString(name)).toStdString();
    }
    [[nodiscard]] QByteArray socketPath() const { return QByteArray::fromStdString(path("socket")); }

    QTemporaryDir m_folder{QDir::temp().filePath(QStringLiteral("speech-XXXXXX"))};
    std::unique_ptr<ChildProcess> m_daemon;
};

}  // namespace corvellan::test
