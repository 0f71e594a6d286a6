// Against a stand-in on a real message bus; no desktop's own portal was ever asked.

#include "Platform/Linux/Screenshots/PortalScreenPictures.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QUrl>

#include "FakeScreenshotPortal.h"
#include "Platform/Linux/Screenshots/MakeScreenPictures.h"
#include "Support/ManualClock.h"
#include "Support/PrivateBus.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

using Picture = std::expected<QImage, Error>;

class PortalScreenPicturesTest : public testing::Test {
protected:
    ~PortalScreenPicturesTest() override { settle(); }

    QString save() {
        QImage image{40, 30, QImage::Format_RGB32};
        image.fill(Qt::darkGreen);
        const QString path = folder.filePath(u"shot.png"_s);
        EXPECT_TRUE(image.save(path));
        return path;
    }
    Picture take() { return complete(pictures.takePicture({})); }
    void begin() {
        [](PortalScreenPicturesTest& test) -> QCoro::Task<void> {
            test.picture = co_await test.pictures.takePicture(test.stop.get_token());
        }(*this);
    }

    PrivateBus bus;
    QTemporaryDir folder;
    ManualClock clock;
    WorkerThread worker{"test-worker"};
    FakeScreenshotPortal portal{bus.connect()};
    PortalScreenPictures pictures{bus.connect(), worker.executor(), clock};
    std::stop_source stop;
    std::optional<Picture> picture;
};

TEST_F(PortalScreenPicturesTest, readsThePictureAndRemovesTheFile) {
    const QString path = save();
    portal.uri = QUrl::fromLocalFile(path).toString();
    const Picture taken = take();
    ASSERT_TRUE(taken) << taken.error().errorDescription().toStdString();
    EXPECT_EQ(taken->size(), QSize(40, 30));
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(portal.lastOptions.value(u"interactive"_s), false);
}

TEST_F(PortalScreenPicturesTest, aUsersRefusalIsToldAsOne) {
    portal.code = 1;
    const Picture taken = take();
    ASSERT_FALSE(taken);
    EXPECT_TRUE(taken.error().errorDescription().contains(u"not allowed"_s));
}

TEST_F(PortalScreenPicturesTest, aDesktopThatRefusesProgramsFails) {
    portal.refuses = true;
    const Picture taken = take();
    ASSERT_FALSE(taken);
    EXPECT_TRUE(taken.error().errorDescription().contains(u"not for you"_s));
}

TEST_F(PortalScreenPicturesTest, aFileThatIsNoPictureFailsAndIsLeftAlone) {
    QFile file{folder.filePath(u"letter.txt"_s)};
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("Dear customer");
    file.close();
    for (const QString& uri : {QUrl::fromLocalFile(file.fileName()).toString(), u"file:///nowhere/at/all.png"_s,
                               QUrl::fromLocalFile(folder.path()).toString(), u"file:///dev/zero"_s,
                               u"http://127.0.0.1/x.png"_s, QString{}, u"::"_s}) {
        portal.uri = uri;
        EXPECT_FALSE(take()) << uri.toStdString();
    }
    EXPECT_TRUE(file.exists());
}

TEST_F(PortalScreenPicturesTest, silenceEndsAfterAUsersTime) {
    portal.isSilent = true;
    begin();
    ASSERT_TRUE(spinUntil([&] { return portal.asked == 1; }));
    clock.advance(PortalScreenPictures::patience);
    ASSERT_TRUE(spinUntil([&] { return picture.has_value(); }));
    EXPECT_FALSE(*picture);
}

TEST_F(PortalScreenPicturesTest, canBeGivenUp) {
    portal.isSilent = true;
    begin();
    ASSERT_TRUE(spinUntil([&] { return portal.asked == 1; }));
    stop.request_stop();
    ASSERT_TRUE(spinUntil([&] { return picture.has_value(); }));
    EXPECT_TRUE((*picture).error().as<CancelledError>());
}

TEST_F(PortalScreenPicturesTest, aDesktopWithoutAPortalFailsAtOnce) {
    PrivateBus empty;
    PortalScreenPictures others{empty.connect(), worker.executor(), clock};
    EXPECT_FALSE(complete(others.takePicture({})));
}

TEST_F(PortalScreenPicturesTest, isTakenOnWaylandAndTheDisplayItselfOnX11) {
    const auto onWayland = makeScreenPictures(worker.executor(), clock, {.isWayland = true}, bus.connect());
    EXPECT_TRUE(dynamic_cast<PortalScreenPictures*>(onWayland.get()));
    const auto onX11 = makeScreenPictures(worker.executor(), clock, {}, bus.connect());
    EXPECT_FALSE(dynamic_cast<PortalScreenPictures*>(onX11.get()));
}

}  // namespace

}  // namespace corvellan::test
