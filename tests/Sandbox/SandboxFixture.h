#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>
#include <QWebSocket>

#include "Sandbox/EventLog.h"
#include "Sandbox/Sandbox.h"
#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

/// A client that knows the wire only: what it sends is written by hand, what it reads is plain JSON.
class WireClient {
public:
    explicit WireClient(const QUrl& url, const QString& token = {}) {
        QNetworkRequest request{url};
        if (!token.isEmpty()) {
            request.setRawHeader("Authorization", "Bearer " + token.toLatin1());
            request.setRawHeader("OpenAI-Beta", "realtime=v1");
        }
        open(request);
    }
    explicit WireClient(const QNetworkRequest& request) { open(request); }

    [[nodiscard]] bool connects() {
        return spinUntil([&] { return m_isConnected || m_isClosed; }) && m_isConnected;
    }
    [[nodiscard]] bool closes() {
        return spinUntil([&] { return m_isClosed; });
    }
    void send(const char* json) {
        ASSERT_TRUE(connects());
        m_socket.sendTextMessage(QString::fromUtf8(json));
    }
    void send(const QByteArray& json) { send(json.constData()); }

    /// The next message, or an empty object when none comes.
    [[nodiscard]] QJsonObject next() {
        spinUntil([&] { return !m_messages.empty() || m_isClosed; });
        return m_messages.empty() ? QJsonObject{} : m_messages.takeFirst();
    }
    /// The next message of this type; those before it are dropped.
    [[nodiscard]] QJsonObject next(const QString& type) {
        while (true) {
            auto message = next();
            if (message.isEmpty() || message[u"type"_s] == type)
                return message;
        }
    }
    [[nodiscard]] QList<QJsonObject>& messages() { return m_messages; }
    [[nodiscard]] bool isClosed() const { return m_isClosed; }
    [[nodiscard]] int closeCode() const { return static_cast<int>(m_socket.closeCode()); }
    [[nodiscard]] QString errorString() const { return m_socket.errorString(); }
    [[nodiscard]] QWebSocket& socket() { return m_socket; }

private:
    void open(const QNetworkRequest& request) {
        QObject::connect(&m_socket, &QWebSocket::connected, &m_socket, [this] { m_isConnected = true; });
        QObject::connect(&m_socket, &QWebSocket::disconnected, &m_socket, [this] { m_isClosed = true; });
        QObject::connect(&m_socket, &QWebSocket::textMessageReceived, &m_socket, [this](const QString& text) {
            m_messages.append(QJsonDocument::fromJson(text.toUtf8()).object());
        });
        m_socket.open(request);
    }

    QWebSocket m_socket;
    bool m_isConnected = false;
    bool m_isClosed = false;
    QList<QJsonObject> m_messages;
};

/// A whole sandbox on free ports, with its log at hand.
class SandboxFixture : public testing::Test {
protected:
    void start(sandbox::SandboxOptions options = {}) {
        options.coachPort = 0;
        options.providerPort = 0;
        auto started = sandbox::Sandbox::start(std::move(options), clock, log);
        ASSERT_TRUE(started) << started.error().errorDescription().toStdString();
        box = std::move(*started);
    }

    [[nodiscard]] QUrl coachUrl(const QString& host = u"127.0.0.1"_s) const {
        return QUrl{u"ws://%1:%2/ws"_s.arg(host).arg(box->coachPort())};
    }

    /// The body of a REST answer.
    [[nodiscard]] QJsonDocument get(const QString& path, int expectedStatus = 200) {
        QNetworkAccessManager network;
        const std::unique_ptr<QNetworkReply> reply{
            network.get(QNetworkRequest{QUrl{u"http://127.0.0.1:%1%2"_s.arg(box->coachPort()).arg(path)}})};
        EXPECT_TRUE(spinUntil([&] { return reply->isFinished(); }));
        EXPECT_EQ(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), expectedStatus);
        return QJsonDocument::fromJson(reply->readAll());
    }

    [[nodiscard]] bool logs(const QString& text) const {
        return std::ranges::any_of(lines, [&](const QString& line) { return line.contains(text); });
    }

    ManualClock clock;
    QStringList lines;
    sandbox::EventLog log{clock, [this](const QString& line) { lines.append(line); }};
    std::unique_ptr<sandbox::Sandbox> box;
};

/// What to write into an "input_audio_buffer.append".
[[nodiscard]] inline QByteArray appendFrame(const QByteArray& pcm) {
    return R"({"type":"input_audio_buffer.append","audio":")" + pcm.toBase64() + R"("})";
}

}  // namespace corvellan::test
