// Against a stand-in on a real message bus; no desktop's own portal was ever asked.

#include "Platform/Linux/Screenshots/PortalScreenCaptures.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QUrl>

#include "FakeScreenshotPortal.h"
#include "Platform/Linux/Screenshots/MakeScreenCaptures.h"
#include "Platform/Linux/Screenshots/PortalScreenPictures.h"
#include "Platform/Linux/Screenshots/X11ScreenCaptures.h"
#include "Support/ManualClock.h"
#include "Support/PrivateBus.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

using Picture = std::expected<QImage, Error>;

class PortalScreenCapturesTest : public testing::Test {
protected:
    PortalScreenCapturesTest() {
        QImage image{40, 30, QImage::Format_RGB32};
        image.fill(Qt::darkGreen);
        EXPECT_TRUE(image.save(path()));
        portal.uri = QUrl::fromLocalFile(path()).toString();
    }
    ~PortalScreenCapturesTest() override { settle(); }

    [[nodiscard]] QString path() const { return folder.filePath(u"shot.png"_s); }
    void begin() {
        [](PortalScreenCapturesTest& test) -> QCoro::Task<void> {
            test.taken = co_await test.capture->displayPicture({}, test.stop.get_token());
        }(*this);
    }
    Picture take(ScreenCapture& from) { return complete(from.displayPicture({}, {})); }

    PrivateBus bus;
    QTemporaryDir folder;
    ManualClock clock;
    WorkerThread worker{"test-worker"};
    WorkerThread network{"test-network"};
    FakeScreenshotPortal portal{bus.connect()};
    PortalScreenCaptures captures{bus.connect(), mainExecutor(), worker.executor(), clock};
    std::shared_ptr<ScreenCapture> capture = captures.open();
    std::stop_source stop;
    std::optional<Picture> taken;
};

TEST_F(PortalScreenCapturesTest, theWholeDesktopIsTheOnlyDisplayAndThereAreNoWindows) {
    const auto content = complete(capture->content({}));
    ASSERT_TRUE(content);
    EXPECT_EQ(content->displays.size(), 1U);
    EXPECT_TRUE(content->windows.empty());
    EXPECT_EQ(content->frontmostProcessId, std::nullopt);
    EXPECT_EQ(portal.asked, 0);
}

TEST_F(PortalScreenCapturesTest, picturesWithoutADialogOfItsOwn) {
    const Picture taken = take(*capture);
    ASSERT_TRUE(taken) << taken.error().errorDescription().toStdString();
    EXPECT_EQ(taken->size(), QSize(40, 30));
    EXPECT_EQ(portal.lastOptions.value(u"interactive"_s), false);
    EXPECT_FALSE(QFile::exists(path())) << "frames don't stay on disk";
}

TEST_F(PortalScreenCapturesTest, canBeAskedFromAnotherThread) {
    const auto ask = [this]() -> QCoro::Task<Picture> { return capture->displayPicture({}, {}); };
    EXPECT_TRUE(complete(network.executor().run(ask)));
}

TEST_F(PortalScreenCapturesTest, whoRefusesIsNotAskedAgainBeforeTheNextStart) {
    portal.code = 1;
    for (int tick = 0; tick < 3; ++tick) {
        const Picture taken = take(*capture);
        ASSERT_FALSE(taken);
        EXPECT_EQ(taken.error().errorDescription(), u"The screenshot was not allowed."_s);
    }
    EXPECT_EQ(portal.asked, 1);
    portal.code = 0;
    const auto next = captures.open();
    EXPECT_TRUE(take(*next));
    EXPECT_EQ(portal.asked, 2);
}

TEST_F(PortalScreenCapturesTest, whoLeavesTheQuestionOpenIsNotAskedAgainEither) {
    portal.isSilent = true;
    begin();
    ASSERT_TRUE(spinUntil([&] { return portal.asked == 1; }));
    clock.advance(PortalScreenPictures::patience);
    ASSERT_TRUE(spinUntil([&] { return taken.has_value(); }));
    EXPECT_FALSE(*taken);
    EXPECT_FALSE(take(*capture));
    EXPECT_EQ(portal.asked, 1);
}

TEST_F(PortalScreenCapturesTest, aFailureThatIsNobodysWillIsTriedAgain) {
    constexpr uint other = 2;
    portal.code = other;
    EXPECT_FALSE(take(*capture));
    portal.code = 0;
    EXPECT_TRUE(take(*capture));
    EXPECT_EQ(portal.asked, 2);
}

TEST_F(PortalScreenCapturesTest, singleWindowsAreNotToBeHad) {
    EXPECT_FALSE(complete(capture->windowPicture({}, {})));
    EXPECT_EQ(portal.asked, 0);
}

TEST_F(PortalScreenCapturesTest, outlivesWhoAsked) {
    portal.isSilent = true;
    begin();
    ASSERT_TRUE(spinUntil([&] { return portal.asked == 1; }));
    capture.reset();
    stop.request_stop();
    ASSERT_TRUE(spinUntil([&] { return taken.has_value(); }));
    EXPECT_TRUE(taken->error().as<CancelledError>());
}

TEST_F(PortalScreenCapturesTest, isTakenOnWaylandAndTheDisplayItselfOnX11) {
    const auto make = [this](const DesktopSession& session) {
        return makeScreenCaptures(mainExecutor(), worker.executor(), clock, session, bus.connect());
    };
    EXPECT_TRUE(dynamic_cast<PortalScreenCaptures*>(make({.isWayland = true}).get()));
    EXPECT_TRUE(dynamic_cast<X11ScreenCaptures*>(make({}).get()));
}

}  // namespace

}  // namespace corvellan::test
