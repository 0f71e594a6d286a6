#pragma once

#include <functional>
#include <map>
#include <QByteArray>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStringList>
#include <QTemporaryDir>
#include <stdexcept>
#include <vector>

namespace corvellan::test {

/// A stand-in for Hyprland's request socket, a real one: one request a connection, an answer, and the end.
class FakeHyprland {
public:
    /// Which words it knows for the property.
    enum class Generation { before050, from050, from053, lua };

    struct Window {
        QByteArray address;
        qint64 processId = 0;
        QString title;
        bool isMapped = true;
        bool isHidden = false;
    };

    FakeHyprland() {
        QObject::connect(&m_server, &QLocalServer::newConnection, &m_server, [this] { take(); });
        if (!m_server.listen(socketPath()))
            throw std::runtime_error(m_server.errorString().toStdString());
    }

    [[nodiscard]] QString socketPath() const { return m_folder.filePath(QStringLiteral("socket.sock")); }
    void close() { m_server.close(); }

    Generation generation = Generation::from053;
    std::vector<Window> windows;
    std::vector<QByteArray> requests;
    /// Changes an answer; an absent one keeps the connection open and silent.
    std::function<std::optional<QByteArray>(const QByteArray& request, const QByteArray& answer)> twist;
    /// Sends answers byte by byte.
    bool isSlow = false;

private:
    void take() {
        QLocalSocket* const socket = m_server.nextPendingConnection();
        QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
            const QByteArray request = socket->readAll();
            requests.push_back(request);
            std::optional<QByteArray> reply = answer(request);
            if (twist)
                reply = twist(request, *reply);
            if (!reply)
                return;
            for (qsizetype i = 0; isSlow && i < reply->size(); ++i) {
                socket->write(reply->sliced(i, 1));
                socket->flush();
            }
            if (!isSlow)
                socket->write(*reply);
            socket->disconnectFromServer();
        });
    }

    [[nodiscard]] QByteArray answer(const QByteArray& request) {
        if (request == "j/clients")
            return clients();
        for (Window& window : windows)
            for (const bool isHidden : {true, false})
                if (request == setRequest(window, isHidden ? "1" : "unset")) {
                    window.isHidden = isHidden;
                    return "ok";
                }
        for (const Window& window : windows)
            if (generation != Generation::before050 &&
                request == "j/getprop address:" + window.address + " " + property())
                return R"({")" + property() + R"(": )" + (window.isHidden ? "true" : "false") + "}";
        return generation == Generation::before050 ? "Invalid dispatcher" : "prop not found";
    }

    [[nodiscard]] QByteArray property() const {
        return generation == Generation::from050 ? "noscreenshare" : "no_screen_share";
    }

    [[nodiscard]] QByteArray setRequest(const Window& window, const QByteArray& value) const {
        switch (generation) {
        case Generation::before050: return "none";
        case Generation::from050:
        case Generation::from053: return "/dispatch setprop address:" + window.address + " " + property() + " " + value;
        case Generation::lua:
            return R"(/dispatch hl.dsp.window.set_prop({ window = "address:)" + window.address +
                   R"(", prop = "no_screen_share", value = ")" + value + R"(" }))";
        }
        Q_UNREACHABLE();
    }

    [[nodiscard]] QByteArray clients() const {
        QByteArray list = "[";
        for (const Window& window : windows) {
            if (list.size() > 1)
                list += ",";
            list += R"({"address": ")" + window.address + R"(", "mapped": )" + (window.isMapped ? "true" : "false") +
                    R"(, "hidden": false, "at": [10, 20], "class": "Corvellan Bram", "title": ")" +
                    window.title.toUtf8() + R"(", "pid": )" + QByteArray::number(window.processId) +
                    R"(, "xwayland": true})";
        }
        return list + "]";
    }

    QTemporaryDir m_folder;
    QLocalServer m_server;
};

}  // namespace corvellan::test
