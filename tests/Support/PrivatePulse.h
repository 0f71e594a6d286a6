#pragma once

#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <span>
#include <stdexcept>

#include "TestLoop.h"

namespace corvellan::test {

/// A sound server of the test's own, in a folder of its own, with virtual devices only: output `spk`, and a
/// microphone `mic` that hears what is played into `micfeed`. While it lives, libpulse in this process talks to
/// it alone. Ends with the object, and with the process if that crashes.
class PrivatePulse {
public:
    static QByteArray speakers() {
        return "load-module module-null-sink sink_name=spk rate=48000 channels=2 format=float32le norewinds=1\n"
               "set-default-sink spk\n";
    }
    static QByteArray microphone(const QByteArray& name = "mic", int rate = 44'100, int channels = 1) {
        // A remapped source counts as a microphone; the monitor below it would not.
        return "load-module module-null-sink sink_name=" + name + "feed rate=" + QByteArray::number(rate) +
               " channels=" + QByteArray::number(channels) +
               " format=float32le norewinds=1\n"
               "load-module module-remap-source source_name=" +
               name + " master=" + name + "feed.monitor\n";
    }
    static QByteArray usual() { return speakers() + microphone() + "set-default-source mic\n"; }

    /// \param modules lines of the server's own configuration.
    explicit PrivatePulse(const QByteArray& modules = usual()) {
        QDir{m_folder.path()}.mkdir(QStringLiteral("run"));
        QFile::setPermissions(m_folder.filePath(QStringLiteral("run")),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        configure(modules);
        qputenv("PULSE_SERVER", "unix:" + socketPath());
        qputenv("PULSE_COOKIE", m_folder.filePath(QStringLiteral("cookie")).toUtf8());
        start();
    }
    ~PrivatePulse() { kill(); }
    PrivatePulse(const PrivatePulse&) = delete;
    PrivatePulse& operator=(const PrivatePulse&) = delete;

    /// What a later `start` brings up.
    void configure(const QByteArray& modules) {
        QFile file{m_folder.filePath(QStringLiteral("test.pa"))};
        if (!file.open(QIODevice::WriteOnly))
            throw std::runtime_error("can't write the sound server's configuration");
        file.write("load-module module-native-protocol-unix auth-anonymous=1 socket=" + socketPath() + "\n" + modules);
    }

    void start() {
        m_server = std::make_unique<QProcess>();
        prepare(*m_server);
        m_server->setStandardErrorFile(m_folder.filePath(QStringLiteral("server.log")));
        m_server->start(
            QStringLiteral("pulseaudio"),
            {QStringLiteral("-n"), QStringLiteral("-F"), m_folder.filePath(QStringLiteral("test.pa")),
             QStringLiteral("--daemonize=no"), QStringLiteral("--fail"), QStringLiteral("--exit-idle-time=-1"),
             QStringLiteral("--use-pid-file=no"), QStringLiteral("--disable-shm=yes"), QStringLiteral("--realtime=no"),
             QStringLiteral("--high-priority=no")});
        if (!spinUntil([this] { return isAnswering(); }))
            throw std::runtime_error("the sound server did not start");
        // It listens before the rest of its configuration has run; it answers only after.
        control({QStringLiteral("info")});
    }

    /// As a crash would: nobody is told.
    void kill() {
        if (!m_server)
            return;
        m_server->kill();
        m_server->waitForFinished(5000);
        m_server.reset();
    }

    /// Stops it in mid-air: connections are accepted by the kernel and never answered.
    void freeze() { ::kill(static_cast<pid_t>(m_server->processId()), SIGSTOP); }

    /// Runs `pactl` and gives what it printed.
    QByteArray control(const QStringList& arguments) {
        QProcess process;
        prepare(process);
        process.start(QStringLiteral("pactl"), arguments);
        if (!process.waitForFinished(10'000) || process.exitCode() != 0)
            throw std::runtime_error("pactl " + arguments.join(u' ').toStdString() + ": " +
                                     process.readAllStandardError().toStdString());
        return process.readAllStandardOutput().trimmed();
    }

    /// Loads a module and gives its number, for `unload-module`.
    QString load(const QString& module) {
        return QString::fromLatin1(control(QStringList{QStringLiteral("load-module")} + module.split(u' ')));
    }

    /// Plays mono samples into a device; the process ends when they have been played.
    std::unique_ptr<QProcess> play(const QString& device, std::span<const float> samples, int rate) {
        QFile file{m_folder.filePath(QStringLiteral("play%1.raw").arg(++m_plays))};
        if (!file.open(QIODevice::WriteOnly))
            throw std::runtime_error("can't write the sound to play");
        file.write(reinterpret_cast<const char*>(samples.data()), static_cast<qint64>(samples.size_bytes()));
        file.close();
        auto process = std::make_unique<QProcess>();
        prepare(*process);
        process->start(QStringLiteral("paplay"),
                       {QStringLiteral("--raw"), QStringLiteral("--format=float32le"), QStringLiteral("--channels=1"),
                        QStringLiteral("--rate=%1").arg(rate), QStringLiteral("-d"), device, file.fileName()});
        return process;
    }

private:
    [[nodiscard]] QByteArray socketPath() const { return m_folder.filePath(QStringLiteral("run/native")).toUtf8(); }

    void prepare(QProcess& process) const {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_folder.path());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_folder.filePath(QStringLiteral("run")));
        environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
        process.setProcessEnvironment(environment);
        process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    }

    [[nodiscard]] bool isAnswering() const {
        const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, socketPath().constData(), sizeof address.sun_path - 1);
        const bool connected = ::connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        ::close(descriptor);
        return connected;
    }

    QTemporaryDir m_folder;
    std::unique_ptr<QProcess> m_server;
    int m_plays = 0;
};

}  // namespace corvellan::test
