#include "Shell/Stealth/CaptureSelfTest.h"

#include <gtest/gtest.h>

#include <QPainter>

#include "Support/FakeScreenPictures.h"
#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class FakeWindow final : public CaptureMarkerWindow {
public:
    bool showMarker(const CaptureMarker& marker, std::function<void()> onShown) override {
        if (!isShown)
            return false;
        shown = marker;
        painted = std::move(onShown);
        return true;
    }
    void clearMarker() override { shown.reset(); }

    bool isShown = true;
    std::optional<CaptureMarker> shown;
    std::function<void()> painted;
};

class CaptureSelfTestTest : public testing::Test {
protected:
    CaptureSelfTestTest() {
        test->onChanged = [this] { ++changes; };
    }

    /// What a capture gets where nothing is hidden.
    QImage screenWithTheWindow() {
        QImage screen = FakeScreenPictures::desktop();
        QPainter painter{&screen};
        int i = 0;
        for (const QColor& color : window.shown->colors()) {
            painter.fillRect(200 + i % CaptureMarker::columns * CaptureMarker::cellSize,
                             100 + i / CaptureMarker::columns * CaptureMarker::cellSize, CaptureMarker::cellSize,
                             CaptureMarker::cellSize, color);
            ++i;
        }
        return screen;
    }

    void begin() {
        test->run();
        settle();
    }
    void paint() {
        window.painted();
        settle();
        settleAfter(clock, CaptureSelfTest::screenDelay);
    }
    CaptureTestResult end() {
        // Looking for what is not there takes longest, and longer still where races are looked for.
        EXPECT_TRUE(spinUntil([&] { return !test->isRunning(); }, std::chrono::seconds{60}));
        return test->result().value_or(CaptureTestResult{});
    }

    ManualClock clock;
    WorkerThread worker{"test-worker"};
    FakeScreenPictures pictures;
    FakeWindow window;
    int changes = 0;
    std::unique_ptr<CaptureSelfTest> test =
        std::make_unique<CaptureSelfTest>(CaptureSelfTest::Means{pictures, clock, worker.executor()}, window);
};

TEST_F(CaptureSelfTestTest, aPictureThatShowsTheWindowMeansVisible) {
    begin();
    ASSERT_TRUE(window.shown);
    pictures.give(screenWithTheWindow());
    paint();
    EXPECT_EQ(end().outcome, CaptureTestOutcome::visible);
    EXPECT_FALSE(window.shown) << "the code goes with the test";
    EXPECT_EQ(changes, 2);
}

TEST_F(CaptureSelfTestTest, aPictureWithoutTheWindowMeansNotVisible) {
    begin();
    pictures.give(FakeScreenPictures::desktop());
    paint();
    EXPECT_EQ(end().outcome, CaptureTestOutcome::notVisible);
    EXPECT_FALSE(window.shown);
}

TEST_F(CaptureSelfTestTest, thePictureIsTakenOnlyWhenTheCodeIsOnTheScreen) {
    begin();
    EXPECT_EQ(pictures.taken, 0);
    window.painted();
    settle();
    settleAfter(clock, CaptureSelfTest::screenDelay - std::chrono::milliseconds{1});
    EXPECT_EQ(pictures.taken, 0) << "the compositor has it, the screen not yet";
    settleAfter(clock, std::chrono::milliseconds{1});
    EXPECT_EQ(pictures.taken, 1);
    end();
}

TEST_F(CaptureSelfTestTest, aCaptureThatFailsSaysNothingAboutTheWindow) {
    begin();
    paint();
    const CaptureTestResult result = end();
    EXPECT_EQ(result.outcome, CaptureTestOutcome::couldNotCapture);
    EXPECT_EQ(result.reason, u"The desktop said no."_s);
    EXPECT_FALSE(window.shown);
}

TEST_F(CaptureSelfTestTest, anEmptyPictureIsNoProofOfHiding) {
    begin();
    QImage black{800, 600, QImage::Format_RGB32};
    black.fill(Qt::black);
    pictures.give(black);
    paint();
    EXPECT_EQ(end().outcome, CaptureTestOutcome::couldNotCapture);
}

TEST_F(CaptureSelfTestTest, aWindowThatIsNotShownIsNotLookedFor) {
    window.isShown = false;
    begin();
    EXPECT_EQ(end().outcome, CaptureTestOutcome::couldNotCapture);
    EXPECT_EQ(pictures.taken, 0);
}

TEST_F(CaptureSelfTestTest, aWindowThatNeverPaintsIsNotLookedFor) {
    begin();
    settleAfter(clock, CaptureSelfTest::paintPatience);
    EXPECT_EQ(end().outcome, CaptureTestOutcome::couldNotCapture);
    EXPECT_EQ(pictures.taken, 0);
    EXPECT_FALSE(window.shown);
}

TEST_F(CaptureSelfTestTest, oneTestRunsAtATime) {
    begin();
    const auto first = window.shown;
    begin();
    EXPECT_EQ(window.shown, first);
    pictures.give(screenWithTheWindow());
    paint();
    EXPECT_EQ(end().outcome, CaptureTestOutcome::visible);
}

TEST_F(CaptureSelfTestTest, aSecondTestLooksForANewCode) {
    begin();
    const QImage stale = screenWithTheWindow();
    pictures.give(stale);
    paint();
    ASSERT_EQ(end().outcome, CaptureTestOutcome::visible);

    begin();
    EXPECT_FALSE(test->result());
    pictures.give(stale);
    paint();
    EXPECT_EQ(end().outcome, CaptureTestOutcome::notVisible);
}

TEST_F(CaptureSelfTestTest, mayGoWhileItRuns) {
    begin();
    test.reset();
    EXPECT_FALSE(window.shown);
    window.painted();
    settle();
    settleAfter(clock, CaptureSelfTest::screenDelay);
    EXPECT_EQ(pictures.taken, 0);
}

}  // namespace

}  // namespace corvellan::test
