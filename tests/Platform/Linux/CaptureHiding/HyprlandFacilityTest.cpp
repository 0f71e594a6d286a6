// Against a stand-in at a real socket; the compositor itself was never asked.

#include "Platform/Linux/CaptureHiding/HyprlandFacility.h"

#include <gtest/gtest.h>

#include "FakeHyprland.h"
#include "Platform/Linux/CaptureHiding/HyprlandSocket.h"
#include "Support/ManualClock.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class HyprlandFacilityTest : public testing::Test {
protected:
    static constexpr qint64 ownProcess = 4242;

    HyprlandFacilityTest() {
        hyprland.windows = {{"0x55aa00", 99, u"Mail"_s},
                            {"0x55bb11", ownProcess, u"Corvellan Bram"_s},
                            {"0x55cc22", ownProcess, u"Handoff"_s}};
    }

    static HidingRequest request(bool isHidden) { return {ownProcess, u"Corvellan Bram"_s, isHidden}; }
    HidingAnswer apply(bool isHidden) { return complete(facility.apply(request(isHidden), {})); }

    /// Starts to hide the window; the answer comes while the test turns the clock.
    void begin() {
        [](HyprlandFacilityTest& test) -> QCoro::Task<void> {
            test.answer = co_await test.facility.apply(request(true), test.stop.get_token());
        }(*this);
    }
    [[nodiscard]] bool hasAsked(std::size_t count) {
        return spinUntil([&] { return hyprland.requests.size() >= count; });
    }

    FakeHyprland hyprland;
    ManualClock clock;
    HyprlandFacility facility{hyprland.socketPath(), clock};
    std::stop_source stop;
    std::optional<HidingAnswer> answer;
};

using Generation = FakeHyprland::Generation;

TEST_F(HyprlandFacilityTest, hidesOurWindowAloneInEveryGeneration) {
    for (const Generation generation : {Generation::from050, Generation::from053, Generation::lua}) {
        hyprland.generation = generation;
        EXPECT_EQ(apply(true).visibility, CaptureVisibility::hidden);
        EXPECT_FALSE(hyprland.windows[0].isHidden);
        EXPECT_TRUE(hyprland.windows[1].isHidden);
        EXPECT_FALSE(hyprland.windows[2].isHidden) << "another window of this program";

        EXPECT_EQ(apply(false).visibility, CaptureVisibility::visible);
        EXPECT_FALSE(hyprland.windows[1].isHidden);
    }
}

TEST_F(HyprlandFacilityTest, aVersionThatKnowsNoSuchRuleFailsInItsOwnWords) {
    hyprland.generation = Generation::before050;
    const HidingAnswer refused = apply(true);
    EXPECT_EQ(refused.visibility, CaptureVisibility::failed);
    EXPECT_TRUE(refused.explanation.contains(u"0.50"_s));
    EXPECT_TRUE(refused.explanation.contains(u"Invalid dispatcher"_s)) << refused.explanation.toStdString();
}

TEST_F(HyprlandFacilityTest, okAloneIsNoConfirmation) {
    hyprland.generation = Generation::lua;
    hyprland.twist = [this](const QByteArray& request, const QByteArray& reply) -> std::optional<QByteArray> {
        hyprland.windows[1].isHidden = false;
        return request.startsWith("/dispatch") ? "ok" : reply;
    };
    EXPECT_EQ(apply(true).visibility, CaptureVisibility::failed) << "the property reads false";

    hyprland.twist = [](const QByteArray& request, const QByteArray& reply) -> std::optional<QByteArray> {
        return request == "j/clients" ? reply : "ok";
    };
    EXPECT_EQ(apply(true).visibility, CaptureVisibility::failed) << "the property can't be read";
}

TEST_F(HyprlandFacilityTest, answersInPiecesAreReadWhole) {
    hyprland.isSlow = true;
    EXPECT_EQ(apply(true).visibility, CaptureVisibility::hidden);
}

TEST_F(HyprlandFacilityTest, garbageFails) {
    for (const QByteArray& garbage : {QByteArray{"{"}, QByteArray{"[[[["}, QByteArray{"\xff\xfe\0\1", 4},
                                      QByteArray{"null"}, QByteArray{"unknown request"}}) {
        hyprland.twist = [&](const QByteArray&, const QByteArray&) { return std::optional{garbage}; };
        EXPECT_EQ(apply(true).visibility, CaptureVisibility::failed) << garbage.toStdString();
        hyprland.twist = [&](const QByteArray& request, const QByteArray& reply) {
            return std::optional{request == "j/clients" ? reply : garbage};
        };
        EXPECT_EQ(apply(true).visibility, CaptureVisibility::failed) << garbage.toStdString();
    }
}

TEST_F(HyprlandFacilityTest, aConnectionThatClosesWithoutAnAnswerFails) {
    hyprland.twist = [](const QByteArray&, const QByteArray&) { return std::optional{QByteArray{}}; };
    EXPECT_EQ(apply(true).visibility, CaptureVisibility::failed);
}

TEST_F(HyprlandFacilityTest, anEndlessAnswerFailsAndIsNotKept) {
    hyprland.twist = [](const QByteArray&, const QByteArray&) {
        return std::optional{QByteArray(2 * hyprlandReplyLimit, '[')};
    };
    const HidingAnswer refused = apply(true);
    EXPECT_EQ(refused.visibility, CaptureVisibility::failed);
    EXPECT_TRUE(refused.explanation.contains(u"too long"_s));
}

TEST_F(HyprlandFacilityTest, aSocketThatIsGoneFails) {
    hyprland.close();
    const HidingAnswer refused = apply(true);
    EXPECT_EQ(refused.visibility, CaptureVisibility::failed);
    EXPECT_TRUE(refused.explanation.contains(u"can't be reached"_s)) << refused.explanation.toStdString();
}

TEST_F(HyprlandFacilityTest, silenceFailsAfterTheTimeForAnAnswer) {
    hyprland.twist = [](const QByteArray&, const QByteArray&) -> std::optional<QByteArray> { return std::nullopt; };
    begin();
    ASSERT_TRUE(hasAsked(1));
    settleAfter(clock, hyprlandPatience - 1ms);
    EXPECT_FALSE(answer);
    settleAfter(clock, 1ms);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->visibility, CaptureVisibility::failed);
    EXPECT_TRUE(answer->explanation.contains(u"in time"_s));
}

TEST_F(HyprlandFacilityTest, aRequestThatIsGivenUpEnds) {
    hyprland.twist = [](const QByteArray&, const QByteArray&) -> std::optional<QByteArray> { return std::nullopt; };
    begin();
    ASSERT_TRUE(hasAsked(1));
    stop.request_stop();
    EXPECT_TRUE(spinUntil([&] { return answer.has_value(); }));
    EXPECT_EQ(answer->visibility, CaptureVisibility::failed);
}

TEST_F(HyprlandFacilityTest, waitsForAWindowThatWasJustShown) {
    const auto own = hyprland.windows[1];
    hyprland.windows.erase(hyprland.windows.begin() + 1);
    begin();
    ASSERT_TRUE(hasAsked(1));
    ASSERT_TRUE(spinUntil([&] { return clock.nextDeadline() == clock.now() + HyprlandFacility::windowPollInterval; }));
    hyprland.windows.push_back(own);
    clock.advance(HyprlandFacility::windowPollInterval);
    ASSERT_TRUE(spinUntil([&] { return answer.has_value(); }));
    EXPECT_EQ(answer->visibility, CaptureVisibility::hidden);
}

TEST_F(HyprlandFacilityTest, aWindowThatNeverComesFails) {
    hyprland.windows.clear();
    begin();
    ASSERT_TRUE(spinUntil([&] {
        if (clock.nextDeadline() == clock.now() + HyprlandFacility::windowPollInterval)
            clock.advance(HyprlandFacility::windowPollInterval);
        return answer.has_value();
    }));
    EXPECT_EQ(answer->visibility, CaptureVisibility::failed);
    EXPECT_TRUE(answer->explanation.contains(u"does not list"_s));
    EXPECT_GE(clock.now().time_since_epoch(), HyprlandFacility::windowPatience);
}

TEST_F(HyprlandFacilityTest, aWindowThatHasGoneNeedsNotBeShown) {
    hyprland.windows.clear();
    EXPECT_EQ(apply(false).visibility, CaptureVisibility::visible);
}

TEST_F(HyprlandFacilityTest, aRefusalToShowIsToldAsOne) {
    hyprland.twist = [](const QByteArray& request, const QByteArray& reply) -> std::optional<QByteArray> {
        return request == "j/clients" ? reply : "no";
    };
    EXPECT_EQ(apply(false).visibility, CaptureVisibility::failed);
}

}  // namespace

}  // namespace corvellan::test
