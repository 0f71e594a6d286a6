#include "Shell/PermissionChecker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Support/FakeDesktop.h"
#include "Support/TestLoop.h"

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace corvellan::test {
namespace {

constexpr PermissionState bothGranted{PermissionStatus::granted, PermissionStatus::granted};
constexpr PermissionState bothMissing{PermissionStatus::denied, PermissionStatus::denied};
constexpr PermissionState onlyScreenMissing{PermissionStatus::granted, PermissionStatus::denied};
constexpr PermissionState onlyMicrophoneMissing{PermissionStatus::denied, PermissionStatus::granted};

class PermissionCheckerTest : public testing::Test {
protected:
    PermissionStatus checkMicrophone(CaptureAuthorization authorization) {
        source.microphone = authorization;
        return complete(checker.checkMicrophone());
    }
    void refuseContent() { source.contentFailure = TransportError{u"The screen can't be captured"_s}; }

    CallLog log;
    FakePermissionSource source{log};
    FakeSystemSettings settings{log};
    FakeAlertPresenter alerts{log};
    PermissionChecker checker{source, settings, alerts};
};

TEST_F(PermissionCheckerTest, everyAnswerOfTheSystemHasItsStatus) {
    EXPECT_EQ(checkMicrophone(CaptureAuthorization::notDetermined), PermissionStatus::unknown);
    EXPECT_EQ(checkMicrophone(CaptureAuthorization::restricted), PermissionStatus::denied);
    EXPECT_EQ(checkMicrophone(CaptureAuthorization::denied), PermissionStatus::denied);
    EXPECT_EQ(checkMicrophone(CaptureAuthorization::authorized), PermissionStatus::granted);
}

TEST_F(PermissionCheckerTest, anAnswerThatNobodyKnowsIsUnknown) {
    EXPECT_EQ(checkMicrophone(static_cast<CaptureAuthorization>(4)), PermissionStatus::unknown);
    EXPECT_EQ(checkMicrophone(static_cast<CaptureAuthorization>(-1)), PermissionStatus::unknown);
}

TEST_F(PermissionCheckerTest, theScreenIsGrantedOrDeniedAndNeverUnknown) {
    EXPECT_EQ(complete(checker.checkScreenRecording()), PermissionStatus::granted);
    refuseContent();
    EXPECT_EQ(complete(checker.checkScreenRecording()), PermissionStatus::denied);
    source.contentFailure = Error::cancelled();
    EXPECT_EQ(complete(checker.checkScreenRecording()), PermissionStatus::denied);
}

TEST_F(PermissionCheckerTest, looksAtTheMicrophoneFirstAndThenAtTheScreen) {
    source.microphone = CaptureAuthorization::restricted;
    EXPECT_EQ(complete(checker.check()), (PermissionState{PermissionStatus::denied, PermissionStatus::granted}));
    EXPECT_THAT(log, ElementsAre("permissions.microphoneAuthorization", "permissions.shareableContent"));
}

TEST_F(PermissionCheckerTest, readsEveryAnswerAfresh) {
    EXPECT_EQ(complete(checker.check()), bothGranted);
    source.microphone = CaptureAuthorization::denied;
    refuseContent();
    EXPECT_EQ(complete(checker.check()), bothMissing);
}

TEST_F(PermissionCheckerTest, aRequestGivesTheUsersAnswer) {
    EXPECT_TRUE(complete(checker.requestMicrophone()));
    source.isMicrophoneGranted = false;
    EXPECT_FALSE(complete(checker.requestMicrophone()));
}

TEST_F(PermissionCheckerTest, unknownCountsAsNotGranted) {
    EXPECT_TRUE(bothGranted.allGranted());
    EXPECT_FALSE((PermissionState{PermissionStatus::unknown, PermissionStatus::granted}.allGranted()));
    EXPECT_FALSE((PermissionState{PermissionStatus::granted, PermissionStatus::unknown}.allGranted()));
    EXPECT_FALSE(onlyScreenMissing.allGranted());
    EXPECT_FALSE(onlyMicrophoneMissing.allGranted());
    EXPECT_FALSE(PermissionState{}.allGranted());
}

TEST_F(PermissionCheckerTest, microphoneNotDeterminedAndScreenGrantedListsOneItemNumbered1) {
    source.microphone = CaptureAuthorization::notDetermined;
    const auto state = complete(checker.check());
    EXPECT_FALSE(state.allGranted());
    EXPECT_EQ(PermissionChecker::informativeText(state),
              u"Corvellan Bram needs the following permissions:\n\n"
              "1. Microphone — captures your voice during calls\n\n"
              "Without these, coaching will be limited."_s);
}

TEST_F(PermissionCheckerTest, bothMissingAreItems1And2InThatOrder) {
    EXPECT_EQ(PermissionChecker::informativeText(bothMissing),
              u"Corvellan Bram needs the following permissions:\n\n"
              "1. Microphone — captures your voice during calls\n"
              "2. Screen & System Audio Recording — captures customer voice from Zoom/Meet/Teams\n\n"
              "Without these, coaching will be limited."_s);
}

TEST_F(PermissionCheckerTest, onlyTheScreenMissingIsNumbered1AndLeadsToTheScreenPane) {
    alerts.answer = 0;
    complete(checker.showMissingPermissionsAlert(onlyScreenMissing));
    ASSERT_EQ(alerts.alerts.size(), 1U);
    EXPECT_EQ(alerts.alerts[0].informativeText,
              u"Corvellan Bram needs the following permissions:\n\n"
              "1. Screen & System Audio Recording — captures customer voice from Zoom/Meet/Teams\n\n"
              "Without these, coaching will be limited."_s);
    EXPECT_THAT(settings.opened, ElementsAre(PrivacyPane::screenCapture));
}

TEST_F(PermissionCheckerTest, unknownForTheMicrophoneCountsAsMissing) {
    alerts.answer = 0;
    complete(checker.showMissingPermissionsAlert({PermissionStatus::unknown, PermissionStatus::granted}));
    EXPECT_TRUE(alerts.alerts.at(0).informativeText.contains(u"1. Microphone"_s));
    EXPECT_THAT(settings.opened, ElementsAre(PrivacyPane::microphone));
}

TEST_F(PermissionCheckerTest, bothMissingLeadToTheMicrophonePaneAlone) {
    alerts.answer = 0;
    complete(checker.showMissingPermissionsAlert(bothMissing));
    EXPECT_THAT(settings.opened, ElementsAre(PrivacyPane::microphone));
}

TEST_F(PermissionCheckerTest, theAlertHasItsTitleAndItsTwoButtons) {
    alerts.answer = 1;
    complete(checker.showMissingPermissionsAlert(bothMissing));
    ASSERT_EQ(alerts.alerts.size(), 1U);
    EXPECT_EQ(alerts.alerts[0].messageText, u"Permissions Required"_s);
    EXPECT_THAT(alerts.alerts[0].buttonTitles, ElementsAre(u"Open System Settings"_s, u"Later"_s));
}

TEST_F(PermissionCheckerTest, waitsForTheAnswer) {
    bool hasEnded = false;
    const auto show = [](PermissionChecker& asked, bool& ended) -> QCoro::Task<void> {
        co_await asked.showMissingPermissionsAlert(bothMissing);
        ended = true;
    };
    const auto shown = show(checker, hasEnded);
    settle();
    EXPECT_EQ(alerts.openCount(), 1U);
    EXPECT_FALSE(hasEnded);
    EXPECT_THAT(settings.opened, IsEmpty());
    alerts.press(0);
    ASSERT_TRUE(spinUntil([&] { return hasEnded; }));
    EXPECT_THAT(settings.opened, ElementsAre(PrivacyPane::microphone));
}

TEST_F(PermissionCheckerTest, laterLeavesEverythingAsItIsAndTheAlertComesBack) {
    alerts.answer = 1;
    refuseContent();
    for (int start = 0; start < 2; ++start) {
        const auto state = complete(checker.check());
        EXPECT_EQ(state, onlyScreenMissing);
        complete(checker.showMissingPermissionsAlert(state));
    }
    EXPECT_THAT(settings.opened, IsEmpty());
    ASSERT_EQ(alerts.alerts.size(), 2U);
    EXPECT_EQ(alerts.alerts[0].informativeText, alerts.alerts[1].informativeText);
}

TEST_F(PermissionCheckerTest, everyStatusHasItsWordForTheLog) {
    EXPECT_EQ(PermissionChecker::statusText(PermissionStatus::granted), u"granted"_s);
    EXPECT_EQ(PermissionChecker::statusText(PermissionStatus::denied), u"denied"_s);
    EXPECT_EQ(PermissionChecker::statusText(PermissionStatus::unknown), u"unknown"_s);
}

}  // namespace
}  // namespace corvellan::test
