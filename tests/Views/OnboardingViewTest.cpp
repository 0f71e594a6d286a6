#include "Views/OnboardingView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "Support/SessionFixture.h"
#include "Support/SettingsFixture.h"
#include "Views/Theme.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class OnboardingViewTest : public testing::Test {
protected:
    OnboardingView& view() {
        if (!m_view)
            m_view = std::make_unique<OnboardingView>(OnboardingView::Parts{.viewModel = fixture.session(),
                                                                            .preferences = fixture.preferences,
                                                                            .permissions = settings.permissions,
                                                                            .systemSettings = desktop().settings,
                                                                            .onComplete = [this] { ++completions; }});
        return *m_view;
    }
    void goTo(int step) {
        view().appear();
        while (view().step() < step)
            view().next();
        settle();
    }
    void close() { m_view.reset(); }
    FakeDesktop& desktop() { return settings.desktop; }
    [[nodiscard]] std::optional<bool> completed() const {
        return fixture.preferences.boolean(u"onboardingCompleted"_s);
    }
    QVariant card(int row, const QByteArray& role) { return view().permissionCards()->value(row, role); }
    QString text(const QString& key) { return view().page().value(key).toString(); }
    /// "mark colour name: text" of each row.
    QStringList rows() {
        QStringList rows;
        for (const QVariant& value : view().page().value(u"rows"_s).toList()) {
            const QVariantMap row = value.toMap();
            rows.push_back(row.value(u"letter"_s).toString() + row.value(u"symbol"_s).toString() + u' ' +
                           row.value(u"colorName"_s).toString() + u' ' + row.value(u"name"_s).toString() + u": "_s +
                           row.value(u"text"_s).toString());
        }
        return rows;
    }
    QString note() {
        const QVariantMap note = view().page().value(u"note"_s).toMap();
        return note.isEmpty()
                   ? QString{}
                   : u"%1 %2 %3: %4"_s.arg(note.value(u"symbol"_s).toString(), note.value(u"colorName"_s).toString(),
                                           note.value(u"opacity"_s).toString(), note.value(u"text"_s).toString());
    }

    SessionFixture fixture;
    SettingsFixture settings{fixture.preferences};
    int completions = 0;

private:
    std::unique_ptr<OnboardingView> m_view;
};

// MARK: - Steps

TEST_F(OnboardingViewTest, fiveStepsAreCountedFromOne) {
    QStringList progress;
    view().appear();
    for (int i = 0; i < 7; ++i) {
        progress.push_back(view().progressText());
        view().next();
    }
    EXPECT_EQ(progress,
              (QStringList{u"1 of 5"_s, u"2 of 5"_s, u"3 of 5"_s, u"4 of 5"_s, u"5 of 5"_s, u"5 of 5"_s, u"5 of 5"_s}));
}

TEST_F(OnboardingViewTest, backLeadsToTheFirstStepAndNoFurther) {
    goTo(2);
    EXPECT_TRUE(view().canGoBack());
    view().back();
    EXPECT_EQ(view().step(), 1);
    view().back();
    EXPECT_EQ(view().step(), 0);
    EXPECT_FALSE(view().canGoBack());
    view().back();
    EXPECT_EQ(view().step(), 0);
}

TEST_F(OnboardingViewTest, onlyTheLastStepIsTheLast) {
    goTo(3);
    EXPECT_FALSE(view().isLastStep());
    view().next();
    EXPECT_TRUE(view().isLastStep());
}

TEST_F(OnboardingViewTest, itStartsAtTheFirstStepWheneverItAppears) {
    goTo(4);
    view().appear();
    EXPECT_EQ(view().step(), 0);
    EXPECT_FALSE(view().micGranted());
    EXPECT_FALSE(view().screenGranted());
}

// MARK: - Ends

TEST_F(OnboardingViewTest, skipOnStepOneSetsOnboardingCompleted) {
    goTo(1);
    EXPECT_EQ(completed(), std::nullopt);
    view().finish();
    EXPECT_EQ(completed(), true);
    EXPECT_EQ(completions, 1);
}

TEST_F(OnboardingViewTest, completionIsToldAfterItIsStored) {
    std::optional<bool> seen;
    OnboardingView onboarding{{.viewModel = fixture.session(),
                               .preferences = fixture.preferences,
                               .permissions = settings.permissions,
                               .systemSettings = desktop().settings,
                               .onComplete = [&] { seen = completed(); }}};
    onboarding.finish();
    EXPECT_EQ(seen, true);
}

TEST_F(OnboardingViewTest, walkingThroughAloneCompletesNothing) {
    goTo(4);
    EXPECT_EQ(completed(), std::nullopt);
    EXPECT_EQ(completions, 0);
}

// MARK: - Words

TEST_F(OnboardingViewTest, theFirstStepWelcomesTheUserByAddress) {
    view().appear();
    EXPECT_EQ(text(u"title"_s), u"Welcome to Corvellan Bram"_s);
    EXPECT_EQ(
        text(u"text"_s),
        u"Your AI sales coach that listens to calls in real-time and whispers coaching tips — MEDDIC tracking, objection handling, and next-step prompts."_s);
    EXPECT_TRUE(rows().isEmpty());
    EXPECT_EQ(view().accountText(), QString{});
    QSignalSpy changes{&view(), &OnboardingView::accountChanged};
    fixture.session().setUserEmail(u"sandra@nordwind.example"_s);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(view().accountText(), u"Signed in as sandra@nordwind.example"_s);
    view().next();
    EXPECT_EQ(view().accountText(), QString{});
}

TEST_F(OnboardingViewTest, theSecondStepTellsHowItWorks) {
    goTo(1);
    EXPECT_EQ(text(u"title"_s), u"How It Works"_s);
    EXPECT_EQ(
        rows(),
        (QStringList{
            u"magnifyingglass cyan Search & Call: Find the company in CRM, hit Call. Bram connects to your mic and system audio."_s,
            u"ear green Bram Listens: Your conversation is transcribed in real-time. Bram analyzes what both sides say."_s,
            u"text.bubble.fill orange Get Coaching: Short tips appear on screen — 10 words max, readable in 5 seconds."_s,
            u"chart.bar.fill purple Review: After the call — MEDDIC score, coaching highlights, and full transcript."_s}));
    EXPECT_EQ(note(), QString{});
}

TEST_F(OnboardingViewTest, theThirdStepTellsOfSearchAndCalendar) {
    goTo(2);
    EXPECT_EQ(text(u"title"_s), u"Company Search & Calendar"_s);
    EXPECT_EQ(text(u"text"_s), u"The more Bram knows about the customer, the better coaching you get."_s);
    EXPECT_EQ(
        rows(),
        (QStringList{
            u"magnifyingglass cyan Search Company: Type a company name — Bram searches CRM and HubSpot. You'll see revenue, orders, contacts, and deal history."_s,
            u"doc.text.fill green Sales Brief: Click a result to see the full brief — what they bought, open deals, key contacts. This context is sent to the coach during the call."_s,
            u"calendar orange Calendar: Upcoming meetings from Google Calendar auto-match to CRM companies. One tap to start a coached call."_s}));
    EXPECT_EQ(
        note(),
        u"info.circle cyan 0.08: Search may show duplicates from CRM and HubSpot — pick the one with more data (revenue, orders)."_s);
}

TEST_F(OnboardingViewTest, theFourthStepTellsOfTheSixCriteria) {
    goTo(3);
    EXPECT_EQ(text(u"title"_s), u"MEDDIC Scoring"_s);
    EXPECT_EQ(text(u"text"_s), u"Bram tracks 6 deal qualification criteria during every call:"_s);
    EXPECT_EQ(rows(), (QStringList{u"M green Metrics: Quantified impact — cost, time, incidents"_s,
                                   u"E green Economic Buyer: Who owns the budget?"_s,
                                   u"D yellow Decision Criteria: What are they evaluating on?"_s,
                                   u"D yellow Decision Process: What are the approval steps?"_s,
                                   u"I orange Identify Pain: Explicit pain stated by customer"_s,
                                   u"C cyan Champion: Internal advocate for your solution"_s}));
    EXPECT_EQ(note(), u"lightbulb.fill orange 0.1: Aim for 3/6 before offering a demo"_s);
}

TEST_F(OnboardingViewTest, theLastStepAsksForTwoPermissions) {
    goTo(4);
    EXPECT_EQ(text(u"title"_s), u"Permissions"_s);
    EXPECT_EQ(text(u"text"_s), u"Bram needs two permissions to coach you during calls."_s);
    ASSERT_EQ(view().permissionCards()->rowCount(), 2);
    EXPECT_EQ(card(0, "symbol"), u"mic.circle.fill"_s);
    EXPECT_EQ(card(0, "title"), u"Microphone"_s);
    EXPECT_EQ(card(0, "detail"), u"Captures your voice for real-time transcription"_s);
    EXPECT_EQ(card(1, "symbol"), u"rectangle.on.rectangle.circle.fill"_s);
    EXPECT_EQ(card(1, "title"), u"Screen Recording"_s);
    EXPECT_EQ(card(1, "detail"), u"Captures customer voice from Zoom / Meet / Teams"_s);
}

TEST_F(OnboardingViewTest, everySymbolAndColourIsKnown) {
    const Theme theme;
    for (int step = 0; step < OnboardingView::totalSteps; ++step) {
        goTo(step);
        QVariantList marked = view().page().value(u"rows"_s).toList();
        if (const QVariantMap note = view().page().value(u"note"_s).toMap(); !note.isEmpty())
            marked.push_back(note);
        for (const QVariant& mark : marked) {
            const QString symbol = mark.toMap().value(u"symbol"_s).toString();
            EXPECT_TRUE(symbol.isEmpty() || isKnownSymbol(symbol)) << qPrintable(symbol);
            EXPECT_TRUE(theme.named().contains(mark.toMap().value(u"colorName"_s).toString()));
        }
    }
    for (int row = 0; row < 2; ++row)
        EXPECT_TRUE(isKnownSymbol(card(row, "symbol").toString()));
}

// MARK: - Permissions

TEST_F(OnboardingViewTest, bothPermissionsAreReadWhenTheLastStepAppears) {
    goTo(3);
    EXPECT_TRUE(desktop().log.empty());
    view().next();
    settle();
    EXPECT_EQ(desktop().log, (CallLog{"permissions.microphoneAuthorization", "permissions.shareableContent"}));
    view().back();
    view().next();
    settle();
    EXPECT_EQ(desktop().log.size(), 4U) << "read afresh";
}

TEST_F(OnboardingViewTest, whoHasBothPermissionsSeesTwoGrantedCards) {
    goTo(4);
    EXPECT_TRUE(card(0, "isGranted").toBool());
    EXPECT_TRUE(card(1, "isGranted").toBool());
    EXPECT_TRUE(view().micGranted());
    EXPECT_TRUE(view().screenGranted());
}

TEST_F(OnboardingViewTest, neitherAnUndecidedNorADeniedMicrophoneIsGranted) {
    for (const auto answer : {CaptureAuthorization::notDetermined, CaptureAuthorization::denied}) {
        desktop().permissions.microphone = answer;
        goTo(4);
        EXPECT_FALSE(view().micGranted());
        EXPECT_TRUE(view().screenGranted());
        EXPECT_FALSE(card(0, "isGranted").toBool());
    }
}

TEST_F(OnboardingViewTest, enableAsksForTheMicrophoneAndKeepsTheAnswer) {
    desktop().permissions.microphone = CaptureAuthorization::notDetermined;
    goTo(4);
    desktop().permissions.isMicrophoneGranted = false;
    view().enable(0);
    settle();
    EXPECT_FALSE(view().micGranted());
    EXPECT_FALSE(card(0, "notice").toString().isEmpty()) << "nobody can see why nothing happened";
    desktop().permissions.isMicrophoneGranted = true;
    view().enable(0);
    settle();
    EXPECT_TRUE(view().micGranted());
    EXPECT_EQ(card(0, "notice").toString(), QString{});
    EXPECT_EQ(std::ranges::count(desktop().log, "permissions.requestMicrophoneAccess"), 2);
}

TEST_F(OnboardingViewTest, enableForTheScreenOpensItsPane) {
    desktop().permissions.contentFailure = Error{TransportError{u"refused"_s}};
    goTo(4);
    EXPECT_FALSE(view().screenGranted());
    view().enable(1);
    settle();
    EXPECT_EQ(desktop().settings.opened, std::vector{PrivacyPane::screenCapture});
    EXPECT_FALSE(view().screenGranted());
}

TEST_F(OnboardingViewTest, comingBackFromTheSettingsReadsAgainAtTheLastStepAlone) {
    desktop().permissions.contentFailure = Error{TransportError{u"refused"_s}};
    goTo(3);
    view().readPermissions();
    settle();
    EXPECT_TRUE(desktop().log.empty());
    view().next();
    settle();
    desktop().permissions.contentFailure.reset();
    view().readPermissions();
    settle();
    EXPECT_TRUE(view().screenGranted());
}

TEST_F(OnboardingViewTest, anAnswerThatComesAfterTheEndIsNobodys) {
    goTo(4);
    desktop().permissions.requestGate.close();
    view().enable(0);
    settle();
    close();
    desktop().permissions.requestGate.open();
    settle();
}

}  // namespace

}  // namespace corvellan::test
