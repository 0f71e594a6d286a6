#include "Views/CalendarView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "HomeFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class CalendarViewTest : public testing::Test {
protected:
    CalendarView& calendar() { return fixture.calendar(); }
    SessionViewModel& session() { return fixture.session.session(); }
    FakeBriefings& briefings() { return fixture.briefings(); }
    QVariant shown(int row, const QByteArray& role) { return calendar().meetings()->value(row, role); }
    /// Meetings come from a server where people sign in.
    void useProduction() { session().setServerURL(u"wss://coach.test/ws"_s); }

    HomeFixture fixture;
};

TEST_F(CalendarViewTest, itAsksForMeetingsWhenItAppears) {
    useProduction();
    briefings().respond = [] { return FakeBriefings::Meetings{{meetingNamed(u"m-1"_s, u"Weekly"_s)}}; };
    briefings().gate.close();
    EXPECT_TRUE(calendar().showsEmptyState());
    calendar().appear();
    settle();
    EXPECT_TRUE(calendar().showsLoading());
    EXPECT_FALSE(calendar().showsEmptyState());
    briefings().gate.open();
    settle();
    EXPECT_TRUE(calendar().showsMeetings());
    EXPECT_FALSE(calendar().showsLoading());
    EXPECT_EQ(shown(0, "summary"), u"Weekly"_s);
    EXPECT_EQ(shown(0, "timeRange"), u"10:00 – 10:30"_s);
}

TEST_F(CalendarViewTest, refreshingDoesNothingWhileAListIsYoung) {
    useProduction();
    briefings().respond = [] { return FakeBriefings::Meetings{{meetingNamed(u"m-1"_s, u"Weekly"_s)}}; };
    calendar().appear();
    settle();
    settleAfter(fixture.session.clock, 299s);
    calendar().refresh();
    settle();
    EXPECT_EQ(briefings().tokens.size(), 1);
    settleAfter(fixture.session.clock, 1s);
    calendar().refresh();
    settle();
    EXPECT_EQ(briefings().tokens.size(), 2);
}

TEST_F(CalendarViewTest, meetingsStayUnderAnError) {
    session().setUpcomingMeetings({meetingNamed(u"m-1"_s, u"Weekly"_s)});
    QSignalSpy changes{&calendar(), &CalendarView::stateChanged};
    session().setCalendarError(u"Authentication expired"_s);
    EXPECT_EQ(calendar().calendarError(), u"Authentication expired"_s);
    EXPECT_TRUE(calendar().showsMeetings());
    EXPECT_EQ(calendar().meetings()->rowCount(), 1);
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(CalendarViewTest, anErrorIsNoEmptyCalendar) {
    session().setCalendarError(u"Authentication expired"_s);
    EXPECT_FALSE(calendar().showsEmptyState());
    EXPECT_FALSE(calendar().showsLoading());
    session().setCalendarError(std::nullopt);
    EXPECT_TRUE(calendar().showsEmptyState());
}

TEST_F(CalendarViewTest, aListIsNotReplacedByASpinner) {
    session().setUpcomingMeetings({meetingNamed(u"m-1"_s, u"Weekly"_s)});
    session().setIsLoadingMeetings(true);
    EXPECT_FALSE(calendar().showsLoading());
    EXPECT_TRUE(calendar().showsMeetings());
    session().setIsLoadingMeetings(false);
}

TEST_F(CalendarViewTest, meetingsStandInTheOrderDelivered) {
    session().setUpcomingMeetings({meetingNamed(u"b"_s, u"B"_s), meetingNamed(u"a"_s, u"A"_s),
                                   meetingNamed(u"d"_s, u"D"_s), meetingNamed(u"c"_s, u"C"_s),
                                   meetingNamed(u"e"_s, u"E"_s)});
    QString order;
    for (int row = 0; row < calendar().meetings()->rowCount(); ++row)
        order += shown(row, "summary").toString();
    EXPECT_EQ(order, u"BADCE"_s);
}

TEST_F(CalendarViewTest, unfoldingASecondCardFoldsTheFirst) {
    session().setUpcomingMeetings({meetingNamed(u"m-1"_s, u"One"_s), meetingNamed(u"m-2"_s, u"Two"_s)});
    calendar().toggleMeeting(0);
    EXPECT_EQ(shown(0, "isExpanded"), true);
    EXPECT_EQ(shown(0, "chevron"), u"chevron.up"_s);
    calendar().toggleMeeting(1);
    EXPECT_EQ(shown(0, "isExpanded"), false);
    EXPECT_EQ(shown(0, "chevron"), u"chevron.down"_s);
    EXPECT_EQ(shown(1, "isExpanded"), true);
    EXPECT_EQ(calendar().expandedMeetingId(), u"m-2"_s);
    calendar().toggleMeeting(1);
    EXPECT_FALSE(calendar().expandedMeetingId());
    for (const int row : {-1, 2})
        calendar().toggleMeeting(row);
    EXPECT_FALSE(calendar().expandedMeetingId());
}

TEST_F(CalendarViewTest, foldingAndAFreshListChangeNothingButTheCards) {
    session().setUpcomingMeetings({meetingNamed(u"m-1"_s, u"One"_s)});
    calendar();
    QSignalSpy changes{&calendar(), &CalendarView::stateChanged};
    calendar().toggleMeeting(0);
    calendar().toggleMeeting(0);
    session().setUpcomingMeetings({meetingNamed(u"m-2"_s, u"Two"_s)});
    EXPECT_EQ(changes.count(), 0);
    session().setUpcomingMeetings({});
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(CalendarViewTest, foldingTellsWhetherThereWasSomethingToFold) {
    EXPECT_FALSE(calendar().foldMeeting());
    session().setUpcomingMeetings({meetingNamed(u"m-1"_s, u"One"_s), meetingNamed(u"m-2"_s, u"Two"_s)});
    EXPECT_FALSE(calendar().foldMeeting());
    calendar().toggleMeeting(1);
    EXPECT_TRUE(calendar().foldMeeting());
    EXPECT_EQ(shown(1, "isExpanded"), false);
    EXPECT_FALSE(calendar().foldMeeting());
    calendar().toggleMeeting(0);
    session().setUpcomingMeetings({meetingNamed(u"m-2"_s, u"Two"_s)});
    EXPECT_FALSE(calendar().foldMeeting()) << "the unfolded one is gone";
}

TEST_F(CalendarViewTest, anUnfoldedCardStaysSoInAFreshList) {
    session().setUpcomingMeetings({meetingNamed(u"m-1"_s, u"One"_s), meetingNamed(u"m-2"_s, u"Two"_s)});
    calendar().toggleMeeting(1);
    session().setUpcomingMeetings({meetingNamed(u"m-2"_s, u"Two"_s)});
    EXPECT_EQ(shown(0, "isExpanded"), true);
}

TEST_F(CalendarViewTest, aCardShowsAttendeesAndCompany) {
    CalendarMeeting meeting = meetingNamed(u"m-1"_s, u"Renewal"_s);
    for (int i = 0; i < 7; ++i)
        meeting.attendees.push_back({.email = u"guest%1@n.example"_s.arg(i)});
    meeting.matchedCompany = nordwind();
    session().setUpcomingMeetings({meeting});
    EXPECT_EQ(shown(0, "attendees").toList().size(), 6);
    EXPECT_EQ(shown(0, "moreAttendees"), u"+1 more"_s);
    EXPECT_EQ(shown(0, "companyName"), u"Nordwind Logistics GmbH"_s);
    EXPECT_EQ(shown(0, "companyCountry"), u"· Germany"_s);
    EXPECT_EQ(shown(0, "companyRevenue"), u"· $248K"_s);
}

TEST_F(CalendarViewTest, aCallStartsAsFromTheHomeScreen) {
    session().setUpcomingMeetings({meetingNamed(u"m-1"_s, u"One"_s), meetingNamed(u"m-2"_s, u"Two"_s)});
    fixture.home().callPrep()->setCallPrepNotes(u"Hosting"_s);
    calendar().startCall(1);
    settle();
    EXPECT_EQ(session().currentCompany(), u"Two"_s);
    EXPECT_EQ(fixture.home().quickStartCompany(), u"Two"_s);
    calendar().startCall(7);
    EXPECT_EQ(session().currentCompany(), u"Two"_s);
}

TEST_F(CalendarViewTest, aMeetingWithoutAMatchStartsUnderItsOwnTitle) {
    session().setUpcomingMeetings({meetingNamed(u"m-1"_s, u"Weekly"_s)});
    calendar().startCall(0);
    const StartSessionPayload start = fixture.started();
    EXPECT_EQ(start.company, u"Weekly"_s);
    EXPECT_FALSE(start.hubspotId);
    EXPECT_EQ(start.calendarEventId, u"m-1"_s);
}

TEST_F(CalendarViewTest, noCardStartsWhileACallIsOnItsWay) {
    session().setUpcomingMeetings({meetingNamed(u"m-1"_s, u"One"_s)});
    fixture.session.ws->connectGate.close();
    QSignalSpy changes{&calendar(), &CalendarView::canStartChanged};
    EXPECT_TRUE(calendar().canStart());
    calendar().startCall(0);
    settle();
    EXPECT_FALSE(calendar().canStart());
    EXPECT_GE(changes.count(), 1);
}

}  // namespace

}  // namespace corvellan::test
