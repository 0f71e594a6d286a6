#include "Views/HomeView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "HomeFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class HomeViewTest : public testing::Test {
protected:
    HomeView& home() { return fixture.home(); }
    SessionViewModel& session() { return fixture.session.session(); }
    QVariant result(int row, const QByteArray& role) { return home().results()->value(row, role); }
    /// What the server is told when the call has come to it.
    StartSessionPayload started() {
        settle();
        for (const ClientMsg& message : fixture.session.ws->sent)
            if (const auto* start = std::get_if<StartSessionPayload>(&message.value))
                return *start;
        ADD_FAILURE() << "no call was started";
        return {};
    }

    HomeFixture fixture;
};

// MARK: - Account and errors

TEST_F(HomeViewTest, whoIsNotSignedInIsAskedToUnlessTheServerIsLocal) {
    EXPECT_TRUE(home().isLoggedIn()) << "a local server";
    QSignalSpy changes{&home(), &HomeView::accountChanged};
    session().setServerURL(u"wss://coach.test/ws"_s);
    EXPECT_FALSE(home().isLoggedIn());
    home().login();
    settle();
    EXPECT_TRUE(fixture.session.did("auth.login"));
    session().setUserEmail(u"kim@corvellan.example"_s);
    EXPECT_TRUE(home().isLoggedIn());
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(HomeViewTest, theSessionsErrorIsShown) {
    QSignalSpy changes{&home(), &HomeView::errorMessageChanged};
    EXPECT_EQ(home().errorMessage(), QString{});
    session().setErrorMessage(u"Login: refused"_s);
    EXPECT_EQ(home().errorMessage(), u"Login: refused"_s);
    EXPECT_EQ(changes.count(), 1);
}

// MARK: - Search

TEST_F(HomeViewTest, oneTypedCharacterAsksForNothing) {
    fixture.know({nordwind()});
    fixture.search(u"no"_s);
    ASSERT_EQ(home().homeSearchResults().size(), 1U);
    fixture.search(u"n"_s);
    EXPECT_TRUE(home().homeSearchResults().empty());
    EXPECT_EQ(home().results()->rowCount(), 0);
    EXPECT_EQ(fixture.briefings().searches.size(), 1U);
}

TEST_F(HomeViewTest, aFlagIsOneCharacterThoughItIsFourUnits) {
    fixture.search(u"🇩🇪"_s);
    EXPECT_TRUE(fixture.briefings().searches.empty());
}

TEST_F(HomeViewTest, quickTypingAsksOnceAfterTheLastChange) {
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

TEST_F(HomeViewTest, anUnchangedTextSearchesNothingAnew) {
    fixture.search(u"nord"_s);
    fixture.search(u"nord"_s);
    EXPECT_EQ(fixture.briefings().searches.size(), 1U);
}

TEST_F(HomeViewTest, aSearchIsUnderWayUntilItsAnswer) {
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

TEST_F(HomeViewTest, theAnswerToATextThatHasChangedIsDropped) {
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

TEST_F(HomeViewTest, aFailedSearchEmptiesTheListInSilence) {
    fixture.know({nordwind()});
    fixture.search(u"nord"_s);
    fixture.briefings().onSearch = [](const QString&) -> FakeBriefings::Result<std::vector<ResolvedCompany>> {
        return std::unexpected(Error{BriefingError{.status = 500}});
    };
    fixture.search(u"nordw"_s);
    EXPECT_FALSE(home().hasResults());
    EXPECT_FALSE(home().isHomeSearching());
    EXPECT_EQ(home().errorMessage(), QString{});
    EXPECT_FALSE(home().briefError());
}

TEST_F(HomeViewTest, withoutATokenNothingIsSearchedAndNothingIsSaid) {
    fixture.session.auth->accessToken.reset();
    fixture.search(u"nord"_s);
    EXPECT_TRUE(fixture.briefings().searches.empty());
    EXPECT_FALSE(home().isHomeSearching());
    EXPECT_EQ(home().errorMessage(), QString{});
}

TEST_F(HomeViewTest, clearingForgetsTheTextAndAllThatWasLoaded) {
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
    ASSERT_TRUE(home().companyBrief() && home().homeHandoff() && home().homeTimeline());

    home().clearSearch();
    EXPECT_EQ(home().quickStartCompany(), QString{});
    EXPECT_FALSE(home().canClearSearch());
    EXPECT_FALSE(home().expandedCompanyId());
    EXPECT_FALSE(home().companyBrief());
    EXPECT_FALSE(home().selectedCompanyMatch());
    EXPECT_FALSE(home().homeHandoff());
    EXPECT_FALSE(home().homeTimeline());
    EXPECT_FALSE(home().homeHandoffExpanded());
    EXPECT_FALSE(home().homeTimelineExpanded());
    EXPECT_FALSE(home().hasResults());
    EXPECT_TRUE(home().revenueFacts().isEmpty());
}

TEST_F(HomeViewTest, theHintShowsOnlyWhileNothingWasTypedAndNothingFound) {
    fixture.know({nordwind()});
    EXPECT_TRUE(home().showsSearchHint());
    home().setQuickStartCompany(u"n"_s);
    EXPECT_FALSE(home().showsSearchHint());
    fixture.search(u"nord"_s);
    EXPECT_FALSE(home().showsSearchHint());
    home().clearSearch();
    EXPECT_TRUE(home().showsSearchHint());
}

TEST_F(HomeViewTest, theSearchSymbolIsCyanWhileTheFieldHasTheKeyboard) {
    EXPECT_EQ(home().searchIconColor(), u"gray"_s);
    home().setIsSearchFocused(true);
    EXPECT_EQ(home().searchIconColor(), u"cyan"_s);
}

TEST_F(HomeViewTest, typingFoldsTheUnfoldedResult) {
    fixture.know({nordwind()});
    fixture.search(u"nord"_s);
    home().toggleCompany(0);
    settle();
    ASSERT_TRUE(home().companyBrief());
    home().setQuickStartCompany(u"nordw"_s);
    EXPECT_FALSE(home().expandedCompanyId());
    EXPECT_FALSE(home().companyBrief());
    EXPECT_EQ(result(0, "isExpanded"), false) << "the list itself stays until the next answer";
}

// MARK: - Results

TEST_F(HomeViewTest, aResultShowsWhatIsKnownOfIt) {
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

TEST_F(HomeViewTest, aTapUnfoldsOneResultAndFoldsItAgain) {
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
    EXPECT_FALSE(home().companyBrief());
    EXPECT_EQ(fixture.briefings().briefs.size(), 2U) << "folding asks for nothing";
}

TEST_F(HomeViewTest, rowsThatAreNotThereDoNothing) {
    fixture.know({nordwind()});
    fixture.search(u"nord"_s);
    for (const int row : {-1, 1, 99}) {
        home().toggleCompany(row);
        home().loadHandoffOf(row);
        home().startCallWithCompany(row);
        home().startMeeting(row);
        home().toggleGoal(row + (row > 0 ? 7 : 0));
    }
    settle();
    EXPECT_FALSE(home().expandedCompanyId());
    EXPECT_TRUE(fixture.briefings().handoffs.empty());
    EXPECT_FALSE(session().isSessionActive());
    EXPECT_TRUE(home().selectedGoals().empty());
}

// MARK: - Call prep

TEST_F(HomeViewTest, aNoteOf1500CharactersIsHeldAt1000) {
    QSignalSpy changes{&home(), &HomeView::callPrepNotesChanged};
    home().setCallPrepNotes(QString{1500, u'x'});
    EXPECT_EQ(home().callPrepNotes().size(), 1000);
    EXPECT_EQ(home().notesCounter(), u"1000/1000"_s);
    EXPECT_EQ(home().notesCounterColor(), u"orange"_s);
    home().setCallPrepNotes(QString{1001, u'x'});
    EXPECT_EQ(changes.count(), 2) << "the field still shows what was cut";
}

TEST_F(HomeViewTest, theCounterWarnsFrom901Characters) {
    struct Row {
        int characters;
        QString counter, color;
    };
    for (const Row& row : {Row{0, u"0/1000"_s, u"gray"_s}, Row{900, u"900/1000"_s, u"gray"_s},
                           Row{901, u"901/1000"_s, u"orange"_s}, Row{1000, u"1000/1000"_s, u"orange"_s}}) {
        home().setCallPrepNotes(QString{row.characters, u'x'});
        EXPECT_EQ(home().notesCounter(), row.counter);
        EXPECT_EQ(home().notesCounterColor(), row.color) << row.characters;
    }
}

TEST_F(HomeViewTest, charactersOfANoteAreCountedAsPeopleDo) {
    QString flags;
    for (int i = 0; i < 1200; ++i)
        flags += u"🇩🇪"_s;
    home().setCallPrepNotes(flags);
    EXPECT_EQ(home().notesCounter(), u"1000/1000"_s);
    EXPECT_EQ(home().callPrepNotes().size(), 4000);
}

TEST_F(HomeViewTest, goalsStandInTheirOrderAndAreToggled) {
    const auto goal = [&](int row, const QByteArray& role) { return home().goals()->value(row, role); };
    const QStringList labels{u"Discovery"_s, u"Demo"_s,    u"Budget"_s, u"Close"_s,
                             u"Support"_s,   u"Renewal"_s, u"Upsell"_s};
    ASSERT_EQ(home().goals()->rowCount(), labels.size());
    for (int row = 0; row < labels.size(); ++row) {
        EXPECT_EQ(goal(row, "label"), labels[row]);
        EXPECT_EQ(goal(row, "isSelected"), false);
    }
    EXPECT_EQ(goal(0, "symbol"), u"magnifyingglass"_s);
    EXPECT_EQ(goal(6, "colorName"), u"mint"_s);
    home().toggleGoal(2);
    EXPECT_EQ(goal(2, "isSelected"), true);
    home().toggleGoal(2);
    EXPECT_EQ(goal(2, "isSelected"), false);
}

TEST_F(HomeViewTest, chosenGoalsAndNotesAreAbsentWhileThereAreNone) {
    EXPECT_FALSE(home().currentGoals());
    EXPECT_FALSE(home().currentCallNotes());
    home().setCallPrepNotes(u" \n\t "_s);
    EXPECT_FALSE(home().currentCallNotes());
    home().setCallPrepNotes(u"\n Ask about EU hosting \n"_s);
    home().toggleGoal(5);
    home().toggleGoal(0);
    EXPECT_EQ(home().currentCallNotes(), u"Ask about EU hosting"_s);
    EXPECT_EQ(home().currentGoals(), (std::vector{CallGoal::discovery, CallGoal::renewal}));
}

// MARK: - Starting

TEST_F(HomeViewTest, aCallStartsWithTheCompanyTheNotesAndTheGoals) {
    fixture.know({nordwind()});
    fixture.search(u"nord"_s);
    home().setCallPrepNotes(u" Ask about EU hosting "_s);
    home().toggleGoal(5);
    home().startCallWithCompany(0);
    const StartSessionPayload start = started();
    EXPECT_EQ(start.company, u"Nordwind Logistics GmbH"_s);
    EXPECT_EQ(start.hubspotId, u"hs-42"_s);
    EXPECT_FALSE(start.calendarEventId);
    EXPECT_EQ(start.callNotes, u"Call prep:\nAsk about EU hosting"_s);
    EXPECT_EQ(start.goals, std::vector{CallGoal::renewal});
    EXPECT_EQ(session().currentCompany(), u"Nordwind Logistics GmbH"_s);
}

TEST_F(HomeViewTest, aCallStartsWithoutACompanyToo) {
    home().setCallPrepNotes(u"Cold list"_s);
    home().toggleGoal(0);
    home().startCallWithoutCompany();
    const StartSessionPayload start = started();
    EXPECT_FALSE(start.company);
    EXPECT_FALSE(start.hubspotId);
    EXPECT_EQ(start.callNotes, u"Call prep:\nCold list"_s);
    EXPECT_EQ(start.goals, std::vector{CallGoal::discovery});
}

TEST_F(HomeViewTest, aCallStartsEvenWhereTheBriefFailed) {
    fixture.know({nordlicht()});
    fixture.briefings().onBrief = [](const CompanyQuery&) -> FakeBriefings::Result<SalesBrief> {
        return std::unexpected(Error{BriefingError{.status = 500}});
    };
    fixture.search(u"nord"_s);
    home().toggleCompany(0);
    settle();
    home().startCallWithCompany(0);
    const StartSessionPayload start = started();
    EXPECT_EQ(start.company, u"Nordlicht Media"_s);
    EXPECT_FALSE(start.hubspotId);
    EXPECT_FALSE(start.callNotes);
    EXPECT_FALSE(start.goals);
}

TEST_F(HomeViewTest, notesAndGoalsAreKeptForTheNextCall) {
    fixture.know({nordwind()});
    fixture.search(u"nord"_s);
    home().setCallPrepNotes(u"Hosting"_s);
    home().toggleGoal(1);
    home().startCallWithCompany(0);
    settle();
    session().stopSession();
    settle();
    EXPECT_EQ(home().callPrepNotes(), u"Hosting"_s);
    EXPECT_EQ(home().currentGoals(), std::vector{CallGoal::demoFollowup});
    EXPECT_EQ(home().quickStartCompany(), u"nord"_s);
    EXPECT_TRUE(home().hasResults());
}

TEST_F(HomeViewTest, nothingStartsWhileAnotherStartIsOnItsWay) {
    fixture.know({nordwind(), nordlicht()});
    fixture.search(u"nord"_s);
    fixture.session.ws->connectGate.close();
    home().startCallWithCompany(0);
    settle();
    EXPECT_FALSE(home().canStart());
    home().startCallWithCompany(1);
    home().startCall(meetingNamed(u"m-1"_s, u"Weekly"_s));
    EXPECT_EQ(session().currentCompany(), u"Nordwind Logistics GmbH"_s);
    EXPECT_EQ(home().quickStartCompany(), u"nord"_s);
}

TEST_F(HomeViewTest, aMeetingWithAMatchStartsWithTheCompany) {
    CalendarMeeting meeting = meetingNamed(u"m-1"_s, u"Renewal talk"_s);
    meeting.matchedCompany = nordwind();
    home().toggleGoal(5);
    home().startCall(meeting);
    const StartSessionPayload start = started();
    EXPECT_EQ(start.company, u"Nordwind Logistics GmbH"_s);
    EXPECT_EQ(start.hubspotId, u"hs-42"_s);
    EXPECT_EQ(start.calendarEventId, u"m-1"_s);
    EXPECT_EQ(start.goals, std::vector{CallGoal::renewal});
    EXPECT_EQ(home().quickStartCompany(), u"Nordwind Logistics GmbH"_s);
}

TEST_F(HomeViewTest, aMeetingWithoutAMatchStartsUnderItsOwnTitle) {
    session().setUpcomingMeetings({meetingNamed(u"m-1"_s, u"Weekly"_s)});
    home().startMeeting(0);
    const StartSessionPayload start = started();
    EXPECT_EQ(start.company, u"Weekly"_s);
    EXPECT_FALSE(start.hubspotId);
    EXPECT_EQ(start.calendarEventId, u"m-1"_s);
    EXPECT_EQ(home().quickStartCompany(), u"Weekly"_s);
}

// MARK: - Meetings and the last session

TEST_F(HomeViewTest, fourMeetingsShowOnlyThree) {
    QSignalSpy changes{&home(), &HomeView::meetingsChanged};
    EXPECT_FALSE(home().hasMeetings());
    session().setUpcomingMeetings({meetingNamed(u"1"_s, u"One"_s), meetingNamed(u"2"_s, u"Two"_s),
                                   meetingNamed(u"3"_s, u"Three"_s), meetingNamed(u"4"_s, u"Four"_s)});
    EXPECT_TRUE(home().hasMeetings());
    ASSERT_EQ(home().meetings()->rowCount(), 3);
    EXPECT_EQ(home().meetings()->value(2, "summary"), u"Three"_s);
    EXPECT_EQ(home().meetings()->value(0, "timeRange"), u"10:00 – 10:30"_s);
    EXPECT_EQ(changes.count(), 1);
}

SessionRecord recordAt(WallTime time) {
    auto record = SessionRecord::make({.durationSecs = 135,
                                       .meddic = {.metrics = true, .economicBuyer = true, .champion = true},
                                       .companyName = u"Nordwind"_s},
                                      time);
    return record;
}

const WallTime march = std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + 8h;

TEST_F(HomeViewTest, withoutRecordsThereIsNoLastSession) {
    FakeStore store;
    EXPECT_FALSE(home().hasLastSession()) << "the store is still being opened";
    fixture.giveStore(store);
    EXPECT_FALSE(home().hasLastSession());
    EXPECT_EQ(home().lastSessionTitle(), QString{});
    fixture.forgetHome();
}

TEST_F(HomeViewTest, theNewestRecordIsTheLastSession) {
    FakeStore store;
    store.records = {recordAt(march - 24h), recordAt(march), recordAt(march - 48h)};
    store.records[0].companyName = u"Older"_s;
    QSignalSpy changes{&home(), &HomeView::lastSessionChanged};
    fixture.giveStore(store);
    ASSERT_TRUE(home().hasLastSession());
    EXPECT_EQ(home().lastSessionTitle(), u"Nordwind"_s);
    EXPECT_EQ(home().lastSessionScore(), u"3/6"_s);
    EXPECT_EQ(home().lastSessionScoreColor(), u"yellow"_s);
    EXPECT_EQ(home().lastSessionCaption(), u"02.03.2026 · 2m 15s"_s);
    EXPECT_FALSE(home().wasLastSessionTraining());
    EXPECT_GE(changes.count(), 1);

    auto newer = recordAt(march + 1h);
    newer.companyName.reset();
    newer.scenario = u"Tough CFO"_s;
    newer.wasTrainMode = true;
    complete(store.insert(newer));
    settle();
    EXPECT_EQ(home().lastSessionTitle(), u"Tough CFO"_s);
    EXPECT_TRUE(home().wasLastSessionTraining());
    fixture.forgetHome();
}

TEST_F(HomeViewTest, aSessionWithoutCompanyAndScenarioIsJustASession) {
    FakeStore store;
    store.records = {recordAt(march)};
    store.records[0].companyName.reset();
    fixture.giveStore(store);
    home();
    settle();
    EXPECT_EQ(home().lastSessionTitle(), u"Session"_s);
    fixture.forgetHome();
}

TEST_F(HomeViewTest, aColdCallHasNoScore) {
    FakeStore store;
    store.records = {recordAt(march)};
    store.records[0].audienceRaw = u"cold_call"_s;
    fixture.giveStore(store);
    home();
    settle();
    ASSERT_TRUE(home().hasLastSession());
    EXPECT_EQ(home().lastSessionScore(), QString{});
    fixture.forgetHome();
}

TEST_F(HomeViewTest, aPoorScoreIsDimRed) {
    FakeStore store;
    store.records = {recordAt(march)};
    store.records[0].meddicData.clear();
    fixture.giveStore(store);
    home();
    settle();
    EXPECT_EQ(home().lastSessionScore(), u"0/6"_s);
    EXPECT_EQ(home().lastSessionScoreColor(), u"red"_s);
    EXPECT_EQ(home().lastSessionScoreOpacity(), 0.7);
    fixture.forgetHome();
}

TEST_F(HomeViewTest, theCardAsksForTheHistory) {
    QSignalSpy requests{&home(), &HomeView::historyRequested};
    home().openHistory();
    EXPECT_EQ(requests.count(), 1);
}

}  // namespace

}  // namespace corvellan::test
