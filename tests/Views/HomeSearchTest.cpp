#include <gtest/gtest.h>

#include "HomeFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class HomeSearchTest : public testing::Test {
protected:
    HomeView& home() { return fixture.home(); }
    SessionViewModel& session() { return fixture.session.session(); }
    CompanyDossier& dossier() { return *home().dossier(); }
    CallPrep& prep() { return *home().callPrep(); }
    QVariant result(int row, const QByteArray& role) { return home().results()->value(row, role); }

    HomeFixture fixture;
};

// MARK: - Search

TEST_F(HomeSearchTest, oneTypedCharacterAsksForNothing) {
    fixture.know({nordwind()});
    fixture.search(u"no"_s);
    ASSERT_EQ(home().homeSearchResults().size(), 1U);
    fixture.search(u"n"_s);
    EXPECT_TRUE(home().homeSearchResults().empty());
    EXPECT_EQ(home().results()->rowCount(), 0);
    EXPECT_EQ(fixture.briefings().searches.size(), 1U);
}

TEST_F(HomeSearchTest, aFlagIsOneCharacterThoughItIsFourUnits) {
    fixture.search(u"🇩🇪"_s);
    EXPECT_TRUE(fixture.briefings().searches.empty());
}

TEST_F(HomeSearchTest, quickTypingAsksOnceAfterTheLastChange) {
    fixture.know({nordwind()});
    for (const QString& typed : {u"no"_s, u"nor"_s, u"nord"_s}) {
        home().setQuickStartCompany(typed);
        settleAfter(fixture.session.clock, 399ms);
    }
    EXPECT_TRUE(fixture.briefings().searches.empty());
    EXPECT_FALSE(home().isHomeSearching());
    settleAfter(fixture.session.clock, 1ms);
    ASSERT_EQ(fixture.briefings().searches.size(), 1U);
    EXPECT_EQ(fixture.briefings().searches[0].query, u"nord"_s);
    EXPECT_EQ(fixture.briefings().searches[0].token, u"token"_s);
    EXPECT_EQ(fixture.briefings().searches[0].limit, 3);
}

TEST_F(HomeSearchTest, anUnchangedTextSearchesNothingAnew) {
    fixture.search(u"nord"_s);
    fixture.search(u"nord"_s);
    EXPECT_EQ(fixture.briefings().searches.size(), 1U);
}

TEST_F(HomeSearchTest, aSearchIsUnderWayUntilItsAnswer) {
    fixture.know({nordwind()});
    fixture.briefings().gate.close();
    fixture.search(u"nord"_s);
    EXPECT_TRUE(home().isHomeSearching());
    EXPECT_FALSE(home().hasResults());
    fixture.briefings().gate.open();
    settle();
    EXPECT_FALSE(home().isHomeSearching());
    EXPECT_TRUE(home().hasResults());
}

TEST_F(HomeSearchTest, theAnswerToATextThatHasChangedIsDropped) {
    fixture.know({nordwind()});
    fixture.briefings().gate.close();
    fixture.search(u"nord"_s);
    home().clearSearch();
    EXPECT_FALSE(home().isHomeSearching());
    fixture.briefings().gate.open();
    settle();
    EXPECT_FALSE(home().hasResults());
    EXPECT_FALSE(home().isHomeSearching());
}

TEST_F(HomeSearchTest, aFailedSearchEmptiesTheListInSilence) {
    fixture.know({nordwind()});
    fixture.search(u"nord"_s);
    fixture.briefings().onSearch = [](const QString&) -> FakeBriefings::Result<std::vector<ResolvedCompany>> {
        return std::unexpected(Error{BriefingError{.status = 500}});
    };
    fixture.search(u"nordw"_s);
    EXPECT_FALSE(home().hasResults());
    EXPECT_FALSE(home().isHomeSearching());
    EXPECT_EQ(home().errorMessage(), QString{});
    EXPECT_FALSE(dossier().briefError());
}

TEST_F(HomeSearchTest, withoutATokenNothingIsSearchedAndNothingIsSaid) {
    fixture.session.auth->accessToken.reset();
    fixture.search(u"nord"_s);
    EXPECT_TRUE(fixture.briefings().searches.empty());
    EXPECT_FALSE(home().isHomeSearching());
    EXPECT_EQ(home().errorMessage(), QString{});
}

TEST_F(HomeSearchTest, clearingForgetsTheTextAndAllThatWasLoaded) {
    fixture.know({nordwind()});
    fixture.briefings().onBrief = [](const CompanyQuery&) {
        return SalesBrief{.revenue = SalesBriefRevenue{.total_orders = 1}};
    };
    fixture.search(u"nord"_s);
    home().toggleCompany(0);
    settle();
    home().toggleHandoff(0);
    home().toggleTimeline(0);
    settle();
    ASSERT_TRUE(dossier().companyBrief() && dossier().homeHandoff() && dossier().homeTimeline());

    home().clearSearch();
    EXPECT_EQ(home().quickStartCompany(), QString{});
    EXPECT_FALSE(home().canClearSearch());
    EXPECT_FALSE(home().expandedCompanyId());
    EXPECT_FALSE(dossier().companyBrief());
    EXPECT_FALSE(dossier().selectedCompanyMatch());
    EXPECT_FALSE(dossier().homeHandoff());
    EXPECT_FALSE(dossier().homeTimeline());
    EXPECT_FALSE(dossier().homeHandoffExpanded());
    EXPECT_FALSE(dossier().homeTimelineExpanded());
    EXPECT_FALSE(home().hasResults());
    EXPECT_TRUE(dossier().revenueFacts().isEmpty());
}

TEST_F(HomeSearchTest, theHintShowsOnlyWhileNothingWasTypedAndNothingFound) {
    fixture.know({nordwind()});
    EXPECT_TRUE(home().showsSearchHint());
    home().setQuickStartCompany(u"n"_s);
    EXPECT_FALSE(home().showsSearchHint());
    fixture.search(u"nord"_s);
    EXPECT_FALSE(home().showsSearchHint());
    home().clearSearch();
    EXPECT_TRUE(home().showsSearchHint());
}

TEST_F(HomeSearchTest, theSearchSymbolIsCyanWhileTheFieldHasTheKeyboard) {
    EXPECT_EQ(home().searchIconColor(), u"gray"_s);
    home().setIsSearchFocused(true);
    EXPECT_EQ(home().searchIconColor(), u"cyan"_s);
}

TEST_F(HomeSearchTest, typingFoldsTheUnfoldedResult) {
    fixture.know({nordwind()});
    fixture.search(u"nord"_s);
    home().toggleCompany(0);
    settle();
    ASSERT_TRUE(dossier().companyBrief());
    home().setQuickStartCompany(u"nordw"_s);
    EXPECT_FALSE(home().expandedCompanyId());
    EXPECT_FALSE(dossier().companyBrief());
    EXPECT_EQ(result(0, "isExpanded"), false) << "the list itself stays until the next answer";
}

// MARK: - Results

TEST_F(HomeSearchTest, aResultShowsWhatIsKnownOfIt) {
    ResolvedCompany empty = nordlicht();
    empty.totalRevenue = 0;
    fixture.know({nordwind(), empty});
    fixture.search(u"nord"_s);
    EXPECT_EQ(result(0, "name"), u"Nordwind Logistics GmbH"_s);
    EXPECT_EQ(result(0, "source"), u"CRM"_s);
    EXPECT_EQ(result(0, "domain"), u"nordwind.example"_s);
    EXPECT_EQ(result(0, "revenue"), u"$248K"_s);
    EXPECT_EQ(result(0, "orders"), u"17 orders"_s);
    EXPECT_EQ(result(0, "chevron"), u"chevron.down"_s);
    for (const QByteArray role : {"domain", "revenue", "orders"})
        EXPECT_EQ(result(1, role), QString{}) << role.constData();
}

TEST_F(HomeSearchTest, aTapUnfoldsOneResultAndFoldsItAgain) {
    fixture.know({nordwind(), nordlicht()});
    fixture.search(u"nord"_s);
    home().toggleCompany(0);
    EXPECT_EQ(result(0, "isExpanded"), true);
    EXPECT_EQ(result(0, "chevron"), u"chevron.up"_s);
    home().toggleCompany(1);
    EXPECT_EQ(result(0, "isExpanded"), false);
    EXPECT_EQ(result(1, "isExpanded"), true);
    settle();
    home().toggleCompany(1);
    EXPECT_FALSE(home().expandedCompanyId());
    EXPECT_FALSE(dossier().companyBrief());
    EXPECT_EQ(fixture.briefings().briefs.size(), 2U) << "folding asks for nothing";
}

TEST_F(HomeSearchTest, rowsThatAreNotThereDoNothing) {
    fixture.know({nordwind()});
    fixture.search(u"nord"_s);
    for (const int row : {-1, 1, 99}) {
        home().toggleCompany(row);
        home().loadHandoffOf(row);
        home().startCallWithCompany(row);
        home().startMeeting(row);
        prep().toggleGoal(row + (row > 0 ? 7 : 0));
    }
    settle();
    EXPECT_FALSE(home().expandedCompanyId());
    EXPECT_TRUE(fixture.briefings().handoffs.empty());
    EXPECT_FALSE(session().isSessionActive());
    EXPECT_TRUE(prep().selectedGoals().empty());
}

}  // namespace

}  // namespace corvellan::test
