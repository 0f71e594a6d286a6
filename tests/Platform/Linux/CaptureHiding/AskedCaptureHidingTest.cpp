#include "Platform/Linux/CaptureHiding/AskedCaptureHiding.h"

#include <gtest/gtest.h>

#include <deque>
#include <QCoreApplication>
#include <QWindow>

#include "Base/Tasks.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

/// Answers when the test says so, and notes what it was asked.
struct Desktop {
    std::vector<HidingRequest> asked;
    std::deque<HidingAnswer> answers;
    Announcement answered;

    void answer(CaptureVisibility visibility, const QString& explanation = u"said so"_s) {
        answers.push_back({visibility, explanation});
        answered.announce();
        settle();
    }
};

class FakeFacility final : public HidingFacility {
public:
    explicit FakeFacility(std::shared_ptr<Desktop> desktop) : m_desktop(std::move(desktop)) {}

    [[nodiscard]] QString offer() const override { return u"It can."_s; }
    QCoro::Task<HidingAnswer> apply(HidingRequest request, std::stop_token /*stop*/) override {
        const auto desktop = m_desktop;
        desktop->asked.push_back(request);
        while (desktop->answers.empty())
            co_await desktop->answered.next();
        const HidingAnswer answer = desktop->answers.front();
        desktop->answers.pop_front();
        co_return answer;
    }

private:
    std::shared_ptr<Desktop> m_desktop;
};

class AskedCaptureHidingTest : public testing::Test {
protected:
    AskedCaptureHidingTest() {
        window.setTitle(u"Corvellan Bram"_s);
        window.show();
        hiding->onChanged = [this] { changes.push_back(hiding->status().visibility); };
    }

    ~AskedCaptureHidingTest() override {
        // What is still asked ends with an answer.
        hiding.reset();
        desktop->answer(CaptureVisibility::failed);
    }

    void setHidden(bool isHidden) {
        hiding->setHidden(window, isHidden);
        settle();
    }

    std::shared_ptr<Desktop> desktop = std::make_shared<Desktop>();
    QWindow window;
    std::unique_ptr<AskedCaptureHiding> hiding =
        std::make_unique<AskedCaptureHiding>(std::make_unique<FakeFacility>(desktop));
    std::vector<CaptureVisibility> changes;
};

TEST_F(AskedCaptureHidingTest, beginsVisibleAndSaysWhatTheDesktopOffers) {
    EXPECT_EQ(hiding->status().offer, CaptureHidingOffer::hides);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::visible);
    EXPECT_EQ(hiding->status().explanation, u"It can."_s);
    EXPECT_TRUE(hiding->status().configuration.isEmpty());
}

TEST_F(AskedCaptureHidingTest, isHiddenOnlyOnceTheDesktopHasConfirmedIt) {
    setHidden(true);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::hiding);
    ASSERT_EQ(desktop->asked.size(), 1U);
    EXPECT_TRUE(desktop->asked[0].isHidden);
    EXPECT_EQ(desktop->asked[0].windowTitle, u"Corvellan Bram"_s);
    EXPECT_EQ(desktop->asked[0].processId, QCoreApplication::applicationPid());

    desktop->answer(CaptureVisibility::hidden);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::hidden);
    EXPECT_EQ(hiding->status().explanation, u"said so"_s);
    EXPECT_EQ(changes, (std::vector{CaptureVisibility::hiding, CaptureVisibility::hidden}));
}

TEST_F(AskedCaptureHidingTest, aRefusalIsToldAsOne) {
    setHidden(true);
    desktop->answer(CaptureVisibility::failed, u"no"_s);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::failed);
    EXPECT_EQ(hiding->status().explanation, u"no"_s);
    EXPECT_EQ(hiding->status().offer, CaptureHidingOffer::hides);
}

TEST_F(AskedCaptureHidingTest, aDesktopThatTurnsOutToOfferNothingOffersNothingFromThenOn) {
    setHidden(true);
    desktop->answer(CaptureVisibility::unsupported, u"too old"_s);
    EXPECT_EQ(hiding->status().offer, CaptureHidingOffer::doesNotHide);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::unsupported);
}

TEST_F(AskedCaptureHidingTest, showingAWindowThatWasNeverHiddenAsksNobody) {
    setHidden(false);
    EXPECT_TRUE(desktop->asked.empty());
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::visible);
}

TEST_F(AskedCaptureHidingTest, showsAgainWhatWasHidden) {
    setHidden(true);
    desktop->answer(CaptureVisibility::hidden);
    setHidden(false);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::hidden) << "until the desktop says otherwise";
    ASSERT_EQ(desktop->asked.size(), 2U);
    EXPECT_FALSE(desktop->asked[1].isHidden);
    desktop->answer(CaptureVisibility::visible);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::visible);

    setHidden(false);
    EXPECT_EQ(desktop->asked.size(), 2U) << "it is shown already";
}

TEST_F(AskedCaptureHidingTest, aWishThatFailedIsUndoneAllTheSame) {
    setHidden(true);
    desktop->answer(CaptureVisibility::failed);
    setHidden(false);
    ASSERT_EQ(desktop->asked.size(), 2U) << "the desktop may have done it without saying so";
}

TEST_F(AskedCaptureHidingTest, theLatestWishCountsAndNoneOvertakesAnother) {
    setHidden(true);
    setHidden(false);
    setHidden(true);
    ASSERT_EQ(desktop->asked.size(), 1U) << "one at a time";

    desktop->answer(CaptureVisibility::failed);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::hiding) << "an answer to an older wish says nothing";
    ASSERT_EQ(desktop->asked.size(), 2U) << "the wish between was overtaken";
    EXPECT_TRUE(desktop->asked[1].isHidden);

    desktop->answer(CaptureVisibility::hidden);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::hidden);
}

TEST_F(AskedCaptureHidingTest, aLateConfirmationNeverHidesAWindowThatWasShownAgain) {
    setHidden(true);
    setHidden(false);
    desktop->answer(CaptureVisibility::hidden);
    EXPECT_NE(hiding->status().visibility, CaptureVisibility::hidden);
    desktop->answer(CaptureVisibility::visible);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::visible);
}

TEST_F(AskedCaptureHidingTest, aWindowThatIsNotShownIsHiddenOnceItIs) {
    window.hide();
    setHidden(true);
    EXPECT_TRUE(desktop->asked.empty());
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::hiding);

    window.show();
    setHidden(true);
    ASSERT_EQ(desktop->asked.size(), 1U);
    desktop->answer(CaptureVisibility::hidden);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::hidden);
}

TEST_F(AskedCaptureHidingTest, aWindowShownAnewIsNotConfirmedYet) {
    setHidden(true);
    desktop->answer(CaptureVisibility::hidden);
    window.hide();
    window.show();
    setHidden(true);
    EXPECT_EQ(hiding->status().visibility, CaptureVisibility::hiding);
    desktop->answer(CaptureVisibility::hidden);
}

TEST_F(AskedCaptureHidingTest, mayGoWhileTheDesktopThinks) {
    setHidden(true);
    hiding.reset();
    desktop->answer(CaptureVisibility::hidden);
    EXPECT_EQ(changes, std::vector{CaptureVisibility::hiding});
}

}  // namespace

}  // namespace corvellan::test
