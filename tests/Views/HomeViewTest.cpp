#include <gtest/gtest.h>

#include <QSignalSpy>

#include "HomeFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class HomeViewTest : public testing::Test {
protected:
    HomeView& home() { return fixture.home(); }
    SessionViewModel& session() { return fixture.session.session(); }
    CallPrep& prep() { return *home().callPrep(); }
    StartSessionPayload started() { return fixture.started(); }

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

// MARK: - Starting

TEST_F(HomeViewTest, aCallStartsWithTheCompanyTheNotesAndTheGoals) {
    fixture.know({nordwind()});
    fixture.search(u"nord"_s);
    prep().setCallPrepNotes(u" Ask about EU hosting "_s);
    prep().toggleGoal(5);
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
    prep().setCallPrepNotes(u"Cold list"_s);
    prep().toggleGoal(0);
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
    prep().setCallPrepNotes(u"Hosting"_s);
    prep().toggleGoal(1);
    home().startCallWithCompany(0);
    settle();
    session().stopSession();
    settle();
    EXPECT_EQ(prep().callPrepNotes(), u"Hosting"_s);
    EXPECT_EQ(prep().currentGoals(), std::vector{CallGoal::demoFollowup});
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
    prep().toggleGoal(5);
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

TEST_F(HomeViewTest, theCardAsksForTheHistory) {
    QSignalSpy requests{&home(), &HomeView::historyRequested};
    home().openHistory();
    EXPECT_EQ(requests.count(), 1);
}

}  // namespace

}  // namespace corvellan::test
