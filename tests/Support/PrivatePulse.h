#pragma once

#include <memory>
#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <span>
#include <stdexcept>

#include "ChildProcess.h"
#include "TestLoop.h"
#include "UnixSocket.h"

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
        m_server = spawn({"pulseaudio", "-n", "-F", path("test.pa"), "--daemonize=no", "--fail", "--exit-idle-time=-1",
                          "--use-pid-file=no", "--disable-shm=yes", "--realtime=no", "--high-priority=no"},
                         "server.log");
        if (!spinUntil([this] { return isListeningAt(socketPath()); }))
            throw std::runtime_error("the sound server did not start: " + contents("server.log").toStdString());
        // It listens before the rest of its configuration has run; it answers only after.
        control({QStringLiteral("info")});
    }

    /// As a crash would: nobody is told.
    void kill() { m_server.reset(); }

    /// Stops it in mid-air: connections are accepted by the kernel and never answered.
    void freeze() { m_server->signal(SIGSTOP); }

    /// Runs `pactl` and gives what it printed.
    QByteArray control(const QStringList& arguments) {
        std::vector<std::string> command{"pactl"};
        for (const QString& argument : arguments)
            command.push_back(argument.toStdString());
        if (!spawn(command, "pactl.log")->finish())
            throw std::runtime_error("pactl " + arguments.join(u' ').toStdString() + ": " +
                                     contents("pactl.log").toStdString());
        return contents("pactl.log").trimmed();
    }

    /// Loads a module and gives its number, for `unload-module`.
    QString load(const QString& module) {
        return QString::fromLatin1(control(QStringList{QStringLiteral("load-module")} + module.split(u' ')));
    }

    /// Plays mono samples into a device; the program ends when they have been played.
    std::unique_ptr<ChildProcess> play(const QString& device, std::span<const float> samples, int rate) {
        const std::string name = "play" + std::to_string(++m_plays);
        QFile file{QString::fromStdString(path(name + ".raw"))};
        if (!file.open(QIODevice::WriteOnly))
            throw std::runtime_error("can't write the sound to play");
        file.write(reinterpret_cast<const char*>(samples.data()), static_cast<qint64>(samples.size_bytes()));
        file.close();
        return spawn({"paplay", "--raw", "--format=float32le", "--channels=1", "--rate=" + std::to_string(rate), "-d",
                      device.toStdString(), path(name + ".raw")},
                     name + ".log");
    }

private:
    [[nodiscard]] std::string path(const std::string& name) const {
        return m_folder.filePath(QString::fromStdString(name)).toStdString();
    }

    [[nodiscard]] QByteArray contents(const std::string& name) const {
        QFile file{QString::fromStdString(path(name))};
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
    }

    [[nodiscard]] QByteArray socketPath() const { return QByteArray::fromStdString(path("run/native")); }

    [[nodiscard]] std::unique_ptr<ChildProcess> spawn(const std::vector<std::string>& command,
                                                      const std::string& output) const {
        const ChildProcess::Environment environment{
            {"HOME", path("")}, {"XDG_RUNTIME_DIR", path("run")}, {"XDG_CONFIG_HOME", path("config")}};
        return std::make_unique<ChildProcess>(command, environment, path(output));
    }

    // By itself it would carry the test program's name, and a server's address ends at a blank.
    QTemporaryDir m_folder{QDir::temp().filePath(QStringLiteral("pulse-XXXXXX"))};
    std::unique_ptr<ChildProcess> m_server;
    int m_plays = 0;
};

}  // namespace corvellan::test
