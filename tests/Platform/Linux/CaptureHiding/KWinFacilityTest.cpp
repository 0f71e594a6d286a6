// Against a stand-in on a real message bus, which runs the script in a real engine; KWin itself was never asked.

#include "Platform/Linux/CaptureHiding/KWinFacility.h"

#include <gtest/gtest.h>

#include <QDBusPendingCall>
#include <QTemporaryDir>

#include "FakeKWin.h"
#include "Platform/Linux/CaptureHiding/KWinReport.h"
#include "Support/ManualClock.h"
#include "Support/PrivateBus.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

const QString plasma66 =
    uR"([
    { pid: 99, caption: "Corvellan Bram", excludeFromCapture: false },
    { pid: 4242, caption: "Corvellan Bram", excludeFromCapture: false },
    { pid: 4242, caption: "Handoff", excludeFromCapture: false }
])"_s;

class KWinFacilityTest : public testing::Test {
protected:
    ~KWinFacilityTest() override { settle(); }

    static HidingRequest request(bool isHidden) { return {4242, u"Corvellan Bram"_s, isHidden}; }
    HidingAnswer apply(bool isHidden) { return complete(facility.apply(request(isHidden), {})); }

    /// The properties of all windows: "false,true,false".
    QString flags() { return kwin->evaluate(u"all.map(w => String(w.excludeFromCapture)).join()"_s).toString(); }

    PrivateBus bus;
    QDBusConnection ours = bus.connect();
    QTemporaryDir folder;
    ManualClock clock;
    KWinFacility facility{ours, folder.path(), clock};
    std::unique_ptr<FakeKWin> kwin = std::make_unique<FakeKWin>(bus.connect(), plasma66);
};

TEST_F(KWinFacilityTest, hidesOurWindowAloneAndShowsItAgain) {
    EXPECT_EQ(apply(true).visibility, CaptureVisibility::hidden);
    EXPECT_EQ(flags(), u"false,true,false"_s);
    EXPECT_EQ(apply(false).visibility, CaptureVisibility::visible);
    EXPECT_EQ(flags(), u"false,false,false"_s);
    EXPECT_FALSE(kwin->hasAnyThrown());
}

TEST_F(KWinFacilityTest, aSecondWindowOfOurTitleIsHiddenToo) {
    kwin->setWindows(
        uR"([
        { pid: 4242, caption: "Corvellan Bram", excludeFromCapture: false },
        { pid: 4242, caption: "Corvellan Bram <2>", excludeFromCapture: false },
        { pid: 4242, caption: "Corvellan Bramble", excludeFromCapture: false }
    ])"_s);
    EXPECT_EQ(apply(true).visibility, CaptureVisibility::hidden);
    EXPECT_EQ(flags(), u"true,true,false"_s);
}

TEST_F(KWinFacilityTest, theScriptIsPrivateAndLeavesNothingBehind) {
    apply(true);
    ASSERT_EQ(kwin->files.size(), 1);
    EXPECT_FALSE(kwin->permissions & (QFile::ReadGroup | QFile::ReadOther));
    EXPECT_FALSE(QFile::exists(kwin->files.first()));
    EXPECT_TRUE(spinUntil([&] { return kwin->unloaded == kwin->loaded; }));
    EXPECT_FALSE(kwin->loaded.first().isEmpty());
}

TEST_F(KWinFacilityTest, beforePlasma66ItIsUnsupported) {
    kwin->setWindows(uR"([{ pid: 4242, caption: "Corvellan Bram" }])"_s);
    const HidingAnswer answer = apply(true);
    EXPECT_EQ(answer.visibility, CaptureVisibility::unsupported);
    EXPECT_TRUE(answer.explanation.contains(u"6.6"_s));
    EXPECT_EQ(apply(false).visibility, CaptureVisibility::visible);
}

TEST_F(KWinFacilityTest, plasma5IsUnsupportedToo) {
    kwin->scriptPath = u"/%1"_s;
    kwin->listName = u"clientList"_s;
    kwin->setWindows(uR"([{ pid: 4242, caption: "Corvellan Bram" }])"_s);
    EXPECT_EQ(apply(true).visibility, CaptureVisibility::unsupported);
}

TEST_F(KWinFacilityTest, aWindowRuleThatForcesTheOppositeFails) {
    kwin->setWindows(
        uR"([{ pid: 4242, caption: "Corvellan Bram",
        get excludeFromCapture() { return false; }, set excludeFromCapture(value) {} }])"_s);
    const HidingAnswer answer = apply(true);
    EXPECT_EQ(answer.visibility, CaptureVisibility::failed);
    EXPECT_TRUE(answer.explanation.contains(u"window rule"_s));
}

TEST_F(KWinFacilityTest, whatATitleHoldsIsNeverRun) {
    const HidingRequest hostile{4242, u"\"); all = []; (\"\\\u2028"_s, true};
    kwin->setWindows(
        u"[{ pid: 4242, caption: %1, excludeFromCapture: false }]"_s.arg(u"\"\\\"); all = []; (\\\"\\\\\\u2028\""_s));
    EXPECT_EQ(complete(facility.apply(hostile, {})).visibility, CaptureVisibility::hidden);
    EXPECT_EQ(flags(), u"true"_s);
}

TEST_F(KWinFacilityTest, withoutKWinItFailsAtOnce) {
    kwin.reset();
    EXPECT_EQ(apply(true).visibility, CaptureVisibility::failed);
}

TEST_F(KWinFacilityTest, aRefusedScriptFails) {
    kwin->nextId = -1;
    EXPECT_EQ(apply(true).visibility, CaptureVisibility::failed);
}

TEST_F(KWinFacilityTest, aScriptThatCantBeWrittenFails) {
    KWinFacility other{ours, u"/nowhere/at/all"_s, clock};
    EXPECT_EQ(complete(other.apply(request(true), {})).visibility, CaptureVisibility::failed);
}

TEST_F(KWinFacilityTest, withoutAReportItFailsAfterTheTimeForOne) {
    kwin->calls.isSilent = true;
    std::optional<HidingAnswer> answer;
    auto task = [](KWinFacility& facility, std::optional<HidingAnswer>& answer) -> QCoro::Task<void> {
        answer = co_await facility.apply(request(true), {});
    }(facility, answer);
    ASSERT_TRUE(spinUntil([&] { return flags() == u"false,true,false"_s; }));
    ASSERT_TRUE(spinUntil([&] {
        clock.advance(KWinFacility::callPatience);
        return answer.has_value();
    }));
    EXPECT_EQ(answer->visibility, CaptureVisibility::failed) << "done, and not confirmed";
}

TEST_F(KWinFacilityTest, aReportWithAnotherTokenIsNone) {
    kwin->calls.isSilent = true;
    std::optional<HidingAnswer> answer;
    auto task = [](KWinFacility& facility, std::optional<HidingAnswer>& answer) -> QCoro::Task<void> {
        answer = co_await facility.apply(request(true), {});
    }(facility, answer);
    ASSERT_TRUE(spinUntil([&] { return flags() == u"false,true,false"_s; }));
    const QString token = kwin->loaded.first().section(u'-', -1);
    auto stranger = bus.connect();
    auto message =
        QDBusMessage::createMethodCall(ours.baseService(), u"/com/teskara/CorvellanBram/CaptureHiding/"_s + token,
                                       QString::fromUtf16(KWinReport::interfaceName), u"report"_s);
    message << u"guessed"_s << u"done"_s;
    const QDBusPendingCall heard = stranger.asyncCall(message);
    ASSERT_TRUE(spinUntil([&] { return heard.isFinished(); }));
    ASSERT_FALSE(heard.isError()) << heard.error().message().toStdString();
    EXPECT_FALSE(answer);
    ASSERT_TRUE(spinUntil([&] {
        clock.advance(KWinFacility::callPatience);
        return answer.has_value();
    }));
    EXPECT_EQ(answer->visibility, CaptureVisibility::failed);
}

TEST_F(KWinFacilityTest, waitsForAWindowThatWasJustShown) {
    kwin->setWindows(u"[]"_s);
    std::optional<HidingAnswer> answer;
    auto task = [](KWinFacility& facility, std::optional<HidingAnswer>& answer) -> QCoro::Task<void> {
        answer = co_await facility.apply(request(true), {});
    }(facility, answer);
    ASSERT_TRUE(spinUntil([&] { return clock.nextDeadline() == clock.now() + KWinFacility::windowPollInterval; }));
    kwin->setWindows(plasma66);
    clock.advance(KWinFacility::windowPollInterval);
    ASSERT_TRUE(spinUntil([&] { return answer.has_value(); }));
    EXPECT_EQ(answer->visibility, CaptureVisibility::hidden);
}

}  // namespace

}  // namespace corvellan::test
