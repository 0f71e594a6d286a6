#include "Views/StealthView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "FakeStealth.h"
#include "Support/FakeScreenPictures.h"
#include "Support/SessionFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class StealthViewTest : public testing::Test {
protected:
    void be(CaptureVisibility visibility, const QString& explanation = u"Thus."_s) {
        hiding.set({CaptureHidingOffer::hides, visibility, explanation, {}});
    }

    SessionFixture fixture;
    FakeDesktopHiding hiding;
    FakeScreenPictures pictures;
    std::function<void()> painted;
    bool isWindowShown = true;
    StealthView view{fixture.session(), hiding, CaptureSelfTest::Means{pictures, fixture.clock, mainExecutor()},
                     [this](std::function<void()> done) {
                         painted = std::move(done);
                         return isWindowShown;
                     }};
};

TEST_F(StealthViewTest, warnsOnlyWhileStealthIsOnAndNotConfirmed) {
    EXPECT_FALSE(view.hasWarning());
    EXPECT_TRUE(view.warningText().isEmpty());
    fixture.session().setIsStealthEnabled(true);
    for (const auto visibility : {CaptureVisibility::visible, CaptureVisibility::hiding, CaptureVisibility::unsupported,
                                  CaptureVisibility::needsConfiguration, CaptureVisibility::failed}) {
        be(visibility);
        EXPECT_TRUE(view.hasWarning());
        EXPECT_FALSE(view.warningText().isEmpty());
        EXPECT_EQ(view.statusText(), view.warningText());
        EXPECT_FALSE(view.controlTip().startsWith(u"Hidden"_s));
    }
    be(CaptureVisibility::hidden, u"It is hidden."_s);
    EXPECT_FALSE(view.hasWarning());
    EXPECT_EQ(view.statusText(), u"It is hidden."_s);
    EXPECT_TRUE(view.controlTip().startsWith(u"Hidden from screen sharing."_s));
}

TEST_F(StealthViewTest, theWarningSaysWhatOthersSeeAndWhy) {
    fixture.session().setIsStealthEnabled(true);
    be(CaptureVisibility::unsupported, u"On X11 all is open."_s);
    EXPECT_EQ(view.warningText(), u"Screen sharing shows this window. On X11 all is open."_s);
    be(CaptureVisibility::failed, u"It refused."_s);
    EXPECT_EQ(view.warningText(), u"Screen sharing may show this window. It refused."_s);
    be(CaptureVisibility::visible, u"It can."_s);
    EXPECT_EQ(view.warningText(), u"Stealth is on and applies in a call. Screen sharing shows this window."_s);
}

TEST_F(StealthViewTest, nobodyIsAlarmedWhileTheDesktopHasYetToAnswer) {
    fixture.session().setIsStealthEnabled(true);
    be(CaptureVisibility::hiding);
    EXPECT_TRUE(view.hasWarning());
    EXPECT_TRUE(view.alertText().isEmpty());
    be(CaptureVisibility::failed);
    EXPECT_EQ(view.alertText(), view.warningText());
}

TEST_F(StealthViewTest, beforeItIsTurnedOnTheControlSaysWhetherItWillHide) {
    hiding.set({CaptureHidingOffer::hides, CaptureVisibility::visible, u"It can."_s, {}});
    EXPECT_TRUE(view.isAvailable());
    EXPECT_EQ(view.controlTip(), u"Hide this window from screen sharing. It can."_s);
    hiding.set({CaptureHidingOffer::doesNotHide, CaptureVisibility::visible, u"It can't."_s, {}});
    EXPECT_FALSE(view.isAvailable());
    EXPECT_EQ(view.controlTip(), u"Stealth would not hide this window from screen sharing. It can't."_s);
    hiding.set(
        {CaptureHidingOffer::needsConfiguration, CaptureVisibility::visible, u"Paste."_s, u"line 1\nline 2\n"_s});
    EXPECT_FALSE(view.isAvailable());
    EXPECT_EQ(view.controlTip(), u"Stealth would not hide this window by itself. Paste."_s);
    EXPECT_EQ(view.adviceText(), u"line 1\nline 2\n"_s);
    EXPECT_EQ(view.statusText(), u"Stealth is off. Paste."_s);
}

TEST_F(StealthViewTest, theControlFlipsTheSessionsFlagAndTellsIt) {
    std::vector<bool> told;
    fixture.session().onStealthChanged = [&](bool isOn) { told.push_back(isOn); };
    EXPECT_EQ(view.controlSymbol(), u"eye.fill"_s);
    view.toggle();
    EXPECT_EQ(view.controlSymbol(), u"eye.slash"_s);
    view.toggle();
    EXPECT_EQ(told, (std::vector{true, false}));
}

TEST_F(StealthViewTest, notifiesWhenTheDesktopAnswersLate) {
    QSignalSpy changes{&view, &StealthView::stateChanged};
    be(CaptureVisibility::hidden);
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(StealthViewTest, paintsTheCodeForTheTimeOfTheTestAndTellsTheResult) {
    EXPECT_TRUE(view.canTest());
    EXPECT_TRUE(view.testResultText().isEmpty());
    view.runSelfTest();
    settle();
    EXPECT_TRUE(view.isTesting());
    EXPECT_FALSE(view.canTest());
    EXPECT_EQ(view.markerColors().size(), CaptureMarker::columns * CaptureMarker::rows);
    EXPECT_TRUE(view.testResultText().startsWith(u"Testing"_s));

    pictures.give(FakeScreenPictures::desktop());
    ASSERT_TRUE(painted);
    painted();
    settle();
    settleAfter(fixture.clock, CaptureSelfTest::screenDelay);
    ASSERT_TRUE(spinUntil([&] { return !view.isTesting(); }));
    EXPECT_TRUE(view.testResultText().startsWith(u"Not visible"_s)) << view.testResultText().toStdString();
    EXPECT_TRUE(view.markerColors().isEmpty());
}

TEST_F(StealthViewTest, aWindowThatIsNotShownCantBeTested) {
    isWindowShown = false;
    view.runSelfTest();
    settle();
    EXPECT_TRUE(view.testResultText().startsWith(u"Could not capture"_s));
    EXPECT_TRUE(view.markerColors().isEmpty());
}

TEST_F(StealthViewTest, withoutMeansNothingIsTested) {
    StealthView other{fixture.session(), hiding};
    EXPECT_FALSE(other.canTest());
    other.runSelfTest();
    EXPECT_FALSE(other.isTesting());
    EXPECT_TRUE(other.testResultText().isEmpty());
}

}  // namespace

}  // namespace corvellan::test
