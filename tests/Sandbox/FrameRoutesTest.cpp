#include "SignedInFixture.h"

namespace corvellan::test {

namespace {

const QByteArray picture = QByteArray{"\xff\xd8\xff\xe0 a picture"};

class FrameRoutesTest : public SignedInFixture {
protected:
    /// The id of a session that runs as long as this test.
    QByteArray session(const char* more = nullptr) {
        auto& client = *clients.emplace_back(std::make_unique<WireClient>(coachUrl()));
        client.send(R"({"type":"start_session","sim_mode":false,"audience":"direct_sale"})");
        if (more)
            client.send(more);
        return client.next()[u"session_id"_s].toString().toLatin1();
    }
    PlainAnswer share(const QByteArray& session, const QByteArray& jpeg = picture, const QByteArray& hash = "7",
                      const QByteArray& contentType = "image/jpeg") {
        return rest({.method = "POST",
                     .path = "/session/" + session + "/frame",
                     .body = jpeg,
                     .contentType = contentType,
                     .moreHeaders = hash.isNull() ? QByteArray{} : "X-Frame-Hash: " + hash + "\r\n"});
    }
    QJsonArray figures() { return get(u"/sandbox/frames"_s).array(); }

    std::vector<std::unique_ptr<WireClient>> clients;
};

}  // namespace

TEST_F(FrameRoutesTest, countsFramesAndShowsTheLast) {
    start();
    EXPECT_TRUE(figures().isEmpty());
    const auto id = session(R"({"type":"set_screen_share","enabled":true})");
    EXPECT_EQ(share(id).status, 204);
    EXPECT_EQ(share(id, picture + '2', "18446744073709551615").status, 204);
    EXPECT_EQ(figures(), (QJsonArray{QJsonObject{{u"session_id"_s, QString::fromLatin1(id)},
                                                 {u"frames"_s, 2},
                                                 {u"refused"_s, 0},
                                                 {u"bytes"_s, 2 * picture.size() + 1},
                                                 {u"last_hash"_s, u"18446744073709551615"_s},
                                                 {u"kept"_s, 2}}}));
    const auto last = rest({.path = "/sandbox/frames/" + id});
    EXPECT_EQ(last.headers.value("content-type"), "image/jpeg");
    EXPECT_EQ(last.body, picture + '2');
    EXPECT_TRUE(logs(u"hash ffffffffffffffff"_s));
    EXPECT_FALSE(logs(u"shares no screen"_s));
}

TEST_F(FrameRoutesTest, keepsOnlyTheLastFrames) {
    start();
    const auto first = session();
    ASSERT_EQ(share(first).status, 204);
    const auto second = session();
    for (int i = 0; i < 9; ++i)
        ASSERT_EQ(share(second, picture + QByteArray::number(i)).status, 204);
    for (const auto& entry : figures())
        EXPECT_EQ(entry[u"kept"_s].toInt(), entry[u"session_id"_s].toString().toLatin1() == second ? 8 : 0);
    EXPECT_EQ(rest({.path = "/sandbox/frames/" + first}).status, 404);
    EXPECT_EQ(rest({.path = "/sandbox/frames/" + second}).body, picture + '8');
}

TEST_F(FrameRoutesTest, refusesWhatIsNoFrame) {
    start();
    const auto id = session();
    EXPECT_EQ(share(id, picture, "7", "image/png").status, 415);
    for (const auto& hash : {QByteArray{}, QByteArray{""}, QByteArray{"0x7"}, QByteArray{"-1"}, QByteArray{"+1"},
                             QByteArray{"7.0"}, QByteArray{"18446744073709551616"}, QByteArray{"ff"}})
        EXPECT_EQ(share(id, picture, hash).status, 400) << hash.constData();
    EXPECT_EQ(share(id, "no picture").status, 400);
    EXPECT_EQ(share(id, {}).status, 400);
    EXPECT_EQ(figures()[0][u"refused"_s].toInt(), 11);
    EXPECT_EQ(figures()[0][u"frames"_s].toInt(), 0);
}

TEST_F(FrameRoutesTest, refusesAFrameThatIsTooLong) {
    start();
    const auto id = session();
    const QUrl url{u"http://127.0.0.1:%1/session/%2/frame"_s.arg(box->coachPort()).arg(QString::fromLatin1(id))};
    // More than a bare socket takes at once.
    QTcpSocket socket;
    socket.connectToHost(QHostAddress{u"127.0.0.1"_s}, box->coachPort());
    const QByteArray body = picture + QByteArray(8 * 1024 * 1024, 'x');
    socket.write("POST " + url.path().toLatin1() +
                 " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: image/jpeg\r\nX-Frame-Hash: 7\r\nContent-Length: " +
                 QByteArray::number(body.size()) + "\r\n\r\n" + body);
    ASSERT_TRUE(spinUntil([&] { return socket.bytesAvailable() > 0; }));
    EXPECT_TRUE(socket.readAll().startsWith("HTTP/1.1 413"));
}

TEST_F(FrameRoutesTest, anUnknownSessionIsNotFound) {
    start();
    EXPECT_EQ(share("nobody").status, 404);
    EXPECT_TRUE(figures().isEmpty());
    EXPECT_EQ(rest({.path = "/sandbox/frames/nobody"}).status, 404);
}

TEST_F(FrameRoutesTest, aFrameThatNobodyAgreedToShowsInTheLog) {
    start();
    EXPECT_EQ(share(session()).status, 204);
    EXPECT_TRUE(logs(u"though this session shares no screen"_s));
}

}  // namespace corvellan::test
