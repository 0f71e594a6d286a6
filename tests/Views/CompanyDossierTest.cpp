#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>

#include "HomeFixture.h"
#include "Views/HomeView.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

const Error refused = BriefingError{.status = 500};
const QString refusal = u"Briefing API error (HTTP 500)"_s;

class CompanyDossierTest : public testing::Test {
protected:
    void SetUp() override {
        fixture.know({nordwind(), nordlicht()});
        fixture.search(u"nord"_s);
        briefings().onBrief = [](const CompanyQuery& query) {
            return SalesBrief{.contacts = std::vector<SalesBriefContact>{{.lastname = query.company}}};
        };
        briefings().onHandoff = [](const CompanyQuery& query) {
            return HandoffResponse{.handoffNote = u"# "_s + *query.company, .meta = HandoffMeta{.callCount = 3}};
        };
        briefings().onTimeline = [] {
            return TimelineResponse{.timeline = {{.eventType = u"call"_s, .date = u"yesterday"_s, .owner = u"Kim"_s}}};
        };
    }

    HomeView& home() { return fixture.home(); }
    CompanyDossier& dossier() { return *home().dossier(); }
    SessionViewModel& session() { return fixture.session.session(); }
    FakeBriefings& briefings() { return fixture.briefings(); }
    void unfold(int row = 0) {
        home().toggleCompany(row);
        settle();
    }
    QString contact() { return dossier().contacts().value(0).toMap().value(u"name"_s).toString(); }

    HomeFixture fixture;
};

// MARK: - Brief

TEST_F(CompanyDossierTest, unfoldingLoadsTheBriefOfTheCompany) {
    briefings().gate.close();
    unfold();
    EXPECT_TRUE(dossier().isLoadingBrief());
    EXPECT_FALSE(dossier().hasBrief());
    briefings().gate.open();
    settle();
    EXPECT_FALSE(dossier().isLoadingBrief());
    EXPECT_TRUE(dossier().hasBrief());
    EXPECT_EQ(briefings().briefs,
              (std::vector{
                  CompanyQuery{.company = u"Nordwind Logistics GmbH"_s, .customerId = 42, .hubspotId = u"hs-42"_s}}));
    EXPECT_EQ(contact(), u"Nordwind Logistics GmbH"_s);
    EXPECT_EQ(dossier().selectedCompanyMatch(), nordwind());
}

TEST_F(CompanyDossierTest, aFailedBriefSaysWhy) {
    briefings().onBrief = [](const CompanyQuery&) -> FakeBriefings::Result<SalesBrief> {
        return std::unexpected(refused);
    };
    unfold();
    EXPECT_FALSE(dossier().isLoadingBrief());
    EXPECT_FALSE(dossier().hasBrief());
    EXPECT_EQ(dossier().briefError(), refusal);
    EXPECT_EQ(dossier().briefProblem(), refusal);
    EXPECT_FALSE(dossier().selectedCompanyMatch());
}

TEST_F(CompanyDossierTest, theNextBriefForgetsTheLastOnesTrouble) {
    briefings().onBrief = [](const CompanyQuery&) -> FakeBriefings::Result<SalesBrief> {
        return std::unexpected(refused);
    };
    unfold(0);
    briefings().gate.close();
    unfold(1);
    EXPECT_FALSE(dossier().briefError());
    EXPECT_EQ(dossier().briefProblem(), QString{});
}

TEST_F(CompanyDossierTest, withoutATokenNothingIsLoadedAndNothingIsSaid) {
    fixture.session.auth->accessToken.reset();
    unfold();
    home().toggleHandoff(0);
    home().toggleTimeline(0);
    settle();
    EXPECT_TRUE(briefings().briefs.empty() && briefings().handoffs.empty() && briefings().timelines.empty());
    EXPECT_FALSE(dossier().isLoadingBrief() || dossier().isLoadingHomeHandoff() || dossier().isLoadingHomeTimeline());
    EXPECT_FALSE(dossier().briefError());
}

TEST_F(CompanyDossierTest, aBriefThatArrivesAfterAnotherWasAskedForOverwrites) {
    Gate& slow = briefings().briefGates[u"Nordwind Logistics GmbH"_s];
    slow.close();
    unfold(0);
    unfold(1);
    EXPECT_EQ(contact(), u"Nordlicht Media"_s);
    EXPECT_EQ(dossier().selectedCompanyMatch(), nordlicht());
    slow.open();
    settle();
    EXPECT_EQ(contact(), u"Nordwind Logistics GmbH"_s) << "the loads bear no numbers";
    EXPECT_EQ(dossier().selectedCompanyMatch(), nordwind());
    EXPECT_EQ(home().expandedCompanyId(), u"hs-7"_s);
}

TEST_F(CompanyDossierTest, aBriefThatArrivesAfterTheRowWasFoldedIsKept) {
    briefings().gate.close();
    unfold(0);
    unfold(0);
    ASSERT_FALSE(home().expandedCompanyId());
    briefings().gate.open();
    settle();
    EXPECT_TRUE(dossier().companyBrief());
    EXPECT_FALSE(dossier().isLoadingBrief());
}

TEST_F(CompanyDossierTest, aBriefOfNothingShowsTheBackEndsExplanation) {
    briefings().onBrief = [](const CompanyQuery&) { return SalesBrief{.error = u"No customer of that name"_s}; };
    unfold();
    EXPECT_EQ(dossier().briefRemark(), u"No customer of that name"_s);
    briefings().onBrief = [](const CompanyQuery&) {
        return SalesBrief{.revenue = SalesBriefRevenue{.total_orders = 2}, .error = u"No HubSpot company"_s};
    };
    unfold(1);
    EXPECT_EQ(dossier().briefRemark(), QString{});
}

TEST_F(CompanyDossierTest, notesAreCounted) {
    unfold();
    EXPECT_EQ(dossier().notesTitle(), QString{});
    briefings().onBrief = [](const CompanyQuery&) {
        return SalesBrief{.notes = std::vector<SalesBriefNote>{{.body = u"One"_s}, {.body = u"Two"_s}}};
    };
    unfold(1);
    EXPECT_EQ(dossier().notesTitle(), u"Notes (2)"_s);
    EXPECT_EQ(dossier().notes()->value(0, "body"), u"One"_s);
}

TEST_F(CompanyDossierTest, linksOpenInTheBrowserIfTheyAreAddresses) {
    briefings().onBrief = [](const CompanyQuery&) {
        return SalesBrief{.links = SalesBriefLinks{.crm = u"https://crm.example/42"_s, .hubspot = u"no address"_s}};
    };
    unfold();
    EXPECT_TRUE(dossier().hasCrmLink());
    EXPECT_FALSE(dossier().hasHubspotLink());
    dossier().openCrm();
    dossier().openHubspot();
    settle();
    EXPECT_EQ(fixture.desktop.browser.pages, std::vector{QUrl{u"https://crm.example/42"_s}});
}

// MARK: - Handoff

TEST_F(CompanyDossierTest, unfoldingTheHandoffLoadsItByItself) {
    unfold();
    briefings().gate.close();
    home().toggleHandoff(0);
    settle();
    EXPECT_TRUE(dossier().homeHandoffExpanded());
    EXPECT_TRUE(dossier().isLoadingHomeHandoff());
    EXPECT_FALSE(dossier().hasHandoff());
    briefings().gate.open();
    settle();
    EXPECT_FALSE(dossier().isLoadingHomeHandoff());
    EXPECT_TRUE(dossier().hasHandoff());
    EXPECT_EQ(dossier().handoffNote(), u"# Nordwind Logistics GmbH"_s);
    EXPECT_EQ(dossier().handoffStatistics().size(), 1);
    EXPECT_EQ(briefings().handoffs,
              (std::vector{
                  CompanyQuery{.company = u"Nordwind Logistics GmbH"_s, .customerId = 42, .hubspotId = u"hs-42"_s}}));
    ASSERT_TRUE(session().cachedHandoff());
    EXPECT_EQ(session().cachedHandoff()->handoffNote, u"# Nordwind Logistics GmbH"_s);
}

TEST_F(CompanyDossierTest, aHandoffThatIsThereOrOnItsWayIsNotLoadedAnew) {
    unfold();
    briefings().gate.close();
    home().toggleHandoff(0);
    settle();
    home().toggleHandoff(0);
    home().toggleHandoff(0);
    settle();
    briefings().gate.open();
    settle();
    home().toggleHandoff(0);
    home().toggleHandoff(0);
    settle();
    EXPECT_EQ(briefings().handoffs.size(), 1U);
}

TEST_F(CompanyDossierTest, aFailedHandoffSaysWhyAndCanBeLoadedAgain) {
    unfold();
    auto good = std::exchange(briefings().onHandoff, [](const CompanyQuery&) -> FakeBriefings::Result<HandoffResponse> {
        return std::unexpected(refused);
    });
    home().toggleHandoff(0);
    settle();
    EXPECT_EQ(dossier().briefError(), u"Handoff: "_s + refusal);
    EXPECT_EQ(dossier().handoffProblem(), u"Handoff: "_s + refusal);
    EXPECT_EQ(dossier().timelineProblem(), QString{});
    EXPECT_EQ(dossier().briefProblem(), QString{}) << "the brief is there";
    EXPECT_FALSE(dossier().isLoadingHomeHandoff());
    EXPECT_FALSE(session().cachedHandoff());
    briefings().onHandoff = good;
    home().loadHandoffOf(0);
    settle();
    EXPECT_TRUE(dossier().hasHandoff());
    EXPECT_EQ(dossier().handoffProblem(), QString{});
}

TEST_F(CompanyDossierTest, theHandoffIsCopiedAndOpened) {
    dossier().copyHandoff();
    dossier().openHandoffWindow();
    EXPECT_TRUE(fixture.handoffWindow.shown.empty()) << "there is none yet";
    unfold();
    home().toggleHandoff(0);
    settle();
    dossier().copyHandoff();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"# Nordwind Logistics GmbH"_s);
    dossier().openHandoffWindow();
    ASSERT_EQ(fixture.handoffWindow.shown.size(), 1U);
    EXPECT_EQ(fixture.handoffWindow.shown[0].handoffNote, u"# Nordwind Logistics GmbH"_s);
}

TEST_F(CompanyDossierTest, aMailLinkOfTheNoteIsHandedToTheDesktop) {
    dossier().openNoteLink(u"mailto:sandra.weiss@nordwind.example"_s);
    settle();
    EXPECT_EQ(fixture.desktop.browser.contacts, std::vector{QUrl{u"mailto:sandra.weiss@nordwind.example"_s}});
}

// MARK: - Timeline

TEST_F(CompanyDossierTest, unfoldingTheTimelineLoadsItByItself) {
    unfold();
    EXPECT_EQ(dossier().eventCountText(), QString{});
    home().toggleTimeline(0);
    settle();
    ASSERT_EQ(briefings().timelines.size(), 1U);
    EXPECT_EQ(briefings().timelines[0].companyId, u"hs-42"_s);
    EXPECT_FALSE(briefings().timelines[0].contactId);
    EXPECT_EQ(briefings().timelines[0].daysBack, 90);
    EXPECT_TRUE(dossier().hasEvents());
    EXPECT_EQ(dossier().eventCountText(), u"1"_s);
    EXPECT_EQ(dossier().events()->value(0, "date"), u"yesterday"_s);
    home().toggleTimeline(0);
    home().toggleTimeline(0);
    settle();
    EXPECT_EQ(briefings().timelines.size(), 1U);
}

TEST_F(CompanyDossierTest, aTimelineWithoutEventsIsLoadedAllTheSame) {
    briefings().onTimeline = [] { return TimelineResponse{}; };
    unfold();
    home().toggleTimeline(0);
    settle();
    EXPECT_FALSE(dossier().hasEvents());
    EXPECT_EQ(dossier().eventCountText(), u"0"_s);
}

TEST_F(CompanyDossierTest, aFailedTimelineSaysWhy) {
    briefings().onTimeline = []() -> FakeBriefings::Result<TimelineResponse> { return std::unexpected(refused); };
    unfold();
    home().toggleTimeline(0);
    settle();
    EXPECT_EQ(dossier().briefError(), u"Timeline: "_s + refusal);
    EXPECT_EQ(dossier().timelineProblem(), u"Timeline: "_s + refusal);
    EXPECT_FALSE(dossier().isLoadingHomeTimeline());
}

TEST_F(CompanyDossierTest, anotherCompanysBriefFoldsHandoffAndTimeline) {
    unfold(0);
    home().toggleHandoff(0);
    home().toggleTimeline(0);
    settle();
    unfold(1);
    EXPECT_FALSE(dossier().homeHandoffExpanded() || dossier().homeTimelineExpanded());
    EXPECT_FALSE(dossier().homeHandoff() || dossier().homeTimeline());
    EXPECT_EQ(dossier().events()->rowCount(), 0);
}

// MARK: - Life

TEST_F(CompanyDossierTest, theViewMayGoWhileAnswersAreOnTheirWay) {
    briefings().gate.close();
    unfold(0);
    home().toggleHandoff(0);
    home().toggleTimeline(0);
    home().setQuickStartCompany(u"nordwind"_s);
    settle();
    fixture.forgetHome();
    briefings().gate.open();
    settleAfter(fixture.session.clock, std::chrono::seconds{1});
    EXPECT_EQ(briefings().searches.size(), 1U) << "the search that was still waiting is not begun";
    EXPECT_FALSE(session().cachedHandoff());
}

}  // namespace

}  // namespace corvellan::test
