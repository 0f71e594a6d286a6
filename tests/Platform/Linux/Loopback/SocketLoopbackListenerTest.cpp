#include "Platform/Linux/Loopback/SocketLoopbackListener.h"

#include <gtest/gtest.h>

#include <QHostAddress>
#include <QList>
#include <QNetworkInterface>
#include <QTcpServer>
#include <vector>

#include "Support/TcpClient.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;

class SocketLoopbackListenerTest : public testing::Test {
protected:
    static quint16 freePort() {
        QTcpServer server;
        EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
        return server.serverPort();
    }

    void start(LoopbackListener::Limits limits = {.minimumBytes = 8, .maximumBytes = 32, .waitingConnections = 4}) {
        auto made = listeners.make();
        ASSERT_TRUE(made);
        listener = std::move(*made);
        listener->start(port, limits,
                        {.serve =
                             [this](const QByteArray& received) {
                                 served.append(received);
                                 return answer;
                             },
                         .failed = [this](const Error& error) { failures.append(error.errorDescription()); }});
    }
    [[nodiscard]] bool serves(qsizetype count) {
        return spinUntil([&] { return served.size() >= count; });
    }

    SocketLoopbackListeners listeners;
    quint16 port = freePort();
    QByteArray answer = "answer";
    QList<QByteArray> served;
    QStringList failures;
    std::unique_ptr<LoopbackListener> listener;
};

}  // namespace

TEST_F(SocketLoopbackListenerTest, answersOnceAndCloses) {
    start();
    TcpClient client{port};
    client.send("question");
    EXPECT_EQ(client.receivedToTheEnd(), "answer");
    EXPECT_EQ(client.error(), 0);
    EXPECT_EQ(served, QList<QByteArray>{"question"});
}

TEST_F(SocketLoopbackListenerTest, closesWithoutAnAnswerWhereThereIsNone) {
    answer = {};
    start();
    TcpClient client{port};
    client.send("question");
    EXPECT_EQ(client.receivedToTheEnd(), "");
    EXPECT_EQ(served, QList<QByteArray>{"question"});
}

TEST_F(SocketLoopbackListenerTest, waitsForTheLeastThatIsAskedFor) {
    start();
    const TcpClient slow{port};
    slow.send("seven b");
    // Who comes later is served, so the first was looked at.
    const TcpClient quick{port};
    quick.send("quick one");
    ASSERT_TRUE(serves(1));
    EXPECT_EQ(served, QList<QByteArray>{"quick one"});
    slow.send("ytes");
    ASSERT_TRUE(serves(2));
    EXPECT_EQ(served.last(), "seven bytes");
}

TEST_F(SocketLoopbackListenerTest, takesLessFromAClientThatSendsNoMore) {
    start();
    TcpClient client{port};
    client.send("few");
    client.finish();
    EXPECT_EQ(client.receivedToTheEnd(), "answer");
    EXPECT_EQ(served, QList<QByteArray>{"few"});
}

TEST_F(SocketLoopbackListenerTest, takesWhatAClientSentBeforeItClosed) {
    start();
    TcpClient client{port};
    client.send("few");
    client.close();
    ASSERT_TRUE(serves(1));
    EXPECT_EQ(served, QList<QByteArray>{"few"});
}

TEST_F(SocketLoopbackListenerTest, tellsOfAClientThatWentWithoutAByte) {
    start();
    TcpClient closing{port};
    closing.close();
    ASSERT_TRUE(serves(1));
    TcpClient resetting{port};
    resetting.reset();
    ASSERT_TRUE(serves(2));
    EXPECT_EQ(served, (QList<QByteArray>{"", ""}));
}

TEST_F(SocketLoopbackListenerTest, dropsWhatIsTooMuchAndStillGetsItsAnswerThrough) {
    start();
    TcpClient client{port};
    client.send(QByteArray(60'000, 'x'));
    EXPECT_EQ(client.receivedToTheEnd(), "answer");
    EXPECT_EQ(client.error(), 0);
    EXPECT_EQ(served, QList<QByteArray>{QByteArray(32, 'x')});
}

TEST_F(SocketLoopbackListenerTest, oneTooManyTakesThePlaceOfTheOneThatWaitedLongest) {
    start();
    std::vector<TcpClient> clients;
    for (int i = 0; i < 5; ++i)
        clients.emplace_back(port).send("x");
    ASSERT_TRUE(spinUntil([&] { return clients[0].isEnded(); }));
    EXPECT_EQ(clients[0].received(), "");
    EXPECT_TRUE(served.isEmpty());
    for (std::size_t i = 1; i < clients.size(); ++i) {
        clients[i].send("1234567");
        EXPECT_EQ(clients[i].receivedToTheEnd(), "answer");
    }
    EXPECT_EQ(served.size(), 4);
}

TEST_F(SocketLoopbackListenerTest, servesOneClientAmongHundredsThatSayNothing) {
    start();
    std::vector<TcpClient> idle;
    for (int i = 0; i < 300; ++i) {
        idle.emplace_back(port);
        // The system's own queue is not what is tested here.
        if (i % 100 == 0)
            settle();
    }
    TcpClient client{port};
    client.send("question");
    EXPECT_EQ(client.receivedToTheEnd(), "answer");
    EXPECT_EQ(served, QList<QByteArray>{"question"});
    EXPECT_TRUE(failures.isEmpty());
}

TEST_F(SocketLoopbackListenerTest, isOutOfReachByAnyOtherAddress) {
    start();
    EXPECT_TRUE(TcpClient{port}.isConnected());
    QStringList others{u"127.0.0.2"_s};
    for (const auto& address : QNetworkInterface::allAddresses())
        if (!address.isLoopback() && address.protocol() == QAbstractSocket::IPv4Protocol)
            others.append(address.toString());
    for (const auto& address : others) {
        const TcpClient client{port, address.toLatin1().constData()};
        EXPECT_FALSE(client.isConnected()) << address.toStdString();
        EXPECT_EQ(client.error(), ECONNREFUSED) << address.toStdString();
    }
}

TEST_F(SocketLoopbackListenerTest, saysThatThePortIsInUse) {
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress::LocalHost, port));
    start();
    EXPECT_EQ(failures, QStringList{u"Address already in use"_s});
}

TEST_F(SocketLoopbackListenerTest, freesThePortForTheNextAtOnce) {
    start();
    TcpClient client{port};
    client.send("question");
    // The server's side closes first, and that address pair stays in the system's books.
    EXPECT_EQ(client.receivedToTheEnd(), "answer");
    const TcpClient waiting{port};
    waiting.send("x");
    settle();
    listener.reset();
    EXPECT_FALSE(TcpClient{port}.isConnected());
    start();
    EXPECT_TRUE(failures.isEmpty());
    EXPECT_TRUE(TcpClient{port}.isConnected());
}

TEST_F(SocketLoopbackListenerTest, endsItsConnectionsWhenItGoes) {
    start();
    TcpClient client{port};
    client.send("x");
    settle();
    listener.reset();
    EXPECT_EQ(client.receivedToTheEnd(), "");
    EXPECT_TRUE(served.isEmpty());
}

}  // namespace corvellan::test
