#include "AppFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

class UpdateBadgeTest : public AppFixture {
protected:
    static QByteArray feed(const QByteArray& version) {
        return "<item><enclosure sparkle:shortVersionString=\"" + version + "\"/></item>";
    }

    bool isRaised(const QString& running, const QByteArray& body) {
        runningVersion = running;
        updateFeed.body = body;
        launch();
        return session().updateAvailable();
    }
};

TEST_F(UpdateBadgeTest, asksTheProductionHost) {
    launch();

    EXPECT_EQ(updateFeed.asked, QList{QUrl{u"https://coach.test/appcast.xml"_s}});
}

TEST_F(UpdateBadgeTest, aLaterVersionRaisesIt) {
    EXPECT_TRUE(isRaised(u"1.4"_s, feed("1.5")));
    EXPECT_EQ(shell.infos().last(), u"Update available: 1.4 → 1.5"_s);
}

TEST_F(UpdateBadgeTest, comparesAsTextSoThatTwoIsAfterTen) {
    EXPECT_TRUE(isRaised(u"10.0"_s, feed("2.0")));
}

TEST_F(UpdateBadgeTest, comparesAsTextSoThatTenIsBeforeNine) {
    EXPECT_FALSE(isRaised(u"1.9"_s, feed("1.10")));
}

TEST_F(UpdateBadgeTest, theSameVersionLeavesItDown) {
    EXPECT_FALSE(isRaised(u"1.9"_s, feed("1.9")));
}

TEST_F(UpdateBadgeTest, aFeedWithoutAVersionIsPassedOverQuietly) {
    EXPECT_FALSE(isRaised(u"1.9"_s, "<rss sparkle:shortVersionString=\"2.0"));
    EXPECT_EQ(shell.infos().size(), 1);
}

TEST_F(UpdateBadgeTest, aFailureOnlyLogs) {
    updateFeed.failure = TransportError{u"no route"_s};

    launch();

    EXPECT_FALSE(session().updateAvailable());
    EXPECT_EQ(shell.infos().last(), u"Update check failed: no route"_s);
}

}  // namespace corvellan::test
