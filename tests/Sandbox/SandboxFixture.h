#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <QHostAddress>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkRequest>
#include <QRegularExpression>
#include <QTcpSocket>
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
        options.chatPort = 0;
        options.providerPort = 0;
        auto started = sandbox::Sandbox::start(std::move(options), clock, log);
        ASSERT_TRUE(started) << started.error().errorDescription().toStdString();
        box = std::move(*started);
    }

    [[nodiscard]] QUrl coachUrl(const QString& host = u"127.0.0.1"_s) const {
        return QUrl{u"ws://%1:%2/ws"_s.arg(host).arg(box->coachPort())};
    }

    /// The body of a REST answer. Over a bare socket, since Qt's own HTTP client brings threads along.
    [[nodiscard]] QByteArray getBody(const QString& path, int expectedStatus = 200) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress{u"127.0.0.1"_s}, box->coachPort());
        socket.write("GET " + path.toLatin1() + " HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(box->coachPort()) +
                     "\r\n\r\n");
        QByteArray answer;
        qsizetype bodyAt = -1;
        EXPECT_TRUE(spinUntil([&] {
            answer += socket.readAll();
            const qsizetype headEnd = answer.indexOf("\r\n\r\n");
            if (headEnd < 0)
                return false;
            bodyAt = headEnd + 4;
            static const QRegularExpression length{u"content-length: *(\\d+)"_s,
                                                   QRegularExpression::CaseInsensitiveOption};
            const auto match = length.match(QString::fromLatin1(answer.first(headEnd)));
            return answer.size() - bodyAt >= match.captured(1).toLongLong();
        }));
        if (bodyAt < 0)
            return {};
        EXPECT_EQ(answer.split(' ').value(1).toInt(), expectedStatus);
        return answer.sliced(bodyAt);
    }
    [[nodiscard]] QJsonDocument get(const QString& path, int expectedStatus = 200) {
        return QJsonDocument::fromJson(getBody(path, expectedStatus));
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
