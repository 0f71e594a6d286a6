#include <gtest/gtest.h>

#include "Support/LogCapture.h"
#include "Support/SessionFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {

namespace {

const std::vector<CalendarMeeting> oneMeeting{{.id = u"e-1"_s, .summary = u"Demo"_s}};

FakeBriefings::Meetings refusal(int status) {
    return std::unexpected(Error{BriefingError{BriefingError::Kind::httpError, status}});
}

class CalendarTest : public testing::Test {
protected:
    CalendarTest() {
        fixture.preferences.setString(u"serverMode"_s, u"production"_s);
        fixture.auth->accessToken = u"token"_s;
        fixture.briefings.respond = [] { return oneMeeting; };
    }

    SessionViewModel& session() { return fixture.session(); }
    [[nodiscard]] qsizetype requests() const { return fixture.briefings.tokens.size(); }
    void fetch() {
        session().fetchUpcomingMeetings();
        settle();
    }

    SessionFixture fixture;
};

}  // namespace

TEST_F(CalendarTest, theNextFiveMeetingsAreFetched) {
    fixture.briefings.gate.close();
    fetch();
    EXPECT_TRUE(session().isLoadingMeetings());
    fixture.briefings.gate.open();
    settle();
    EXPECT_EQ(session().upcomingMeetings(), oneMeeting);
    EXPECT_FALSE(session().isLoadingMeetings());
    EXPECT_EQ(session().calendarError(), std::nullopt);
    EXPECT_EQ(fixture.briefings.lastMaxResults, 5);
    EXPECT_EQ(fixture.briefings.tokens, QStringList{u"token"_s});
}

TEST_F(CalendarTest, aLocalServerHasNoCalendar) {
    session().setServerURL(u"ws://127.0.0.1:3001/ws"_s);
    session().fetchUpcomingMeetings(true);
    settle();
    EXPECT_EQ(requests(), 0);
}

TEST_F(CalendarTest, aListIsGoodForFiveMinutes) {
    fetch();
    settleAfter(fixture.clock, 299s);
    fetch();
    EXPECT_EQ(requests(), 1);
    settleAfter(fixture.clock, 1s);
    fetch();
    EXPECT_EQ(requests(), 2);
}

TEST_F(CalendarTest, anEmptyListIsFetchedAgainEachTime) {
    fixture.briefings.respond = {};
    fetch();
    settleAfter(fixture.clock, 1s);
    fetch();
    EXPECT_EQ(requests(), 2);
}

TEST_F(CalendarTest, forceFetchesAFreshListToo) {
    fetch();
    session().fetchUpcomingMeetings(true);
    settle();
    EXPECT_EQ(requests(), 2);
}

TEST_F(CalendarTest, quickCallsRunSideBySideAndTheLaterAnswerWins) {
    fixture.briefings.gate.close();
    session().fetchUpcomingMeetings(true);
    settle();
    fixture.briefings.respond = [] { return std::vector<CalendarMeeting>{{.id = u"e-2"_s}}; };
    session().fetchUpcomingMeetings(true);
    settle();
    EXPECT_EQ(requests(), 2);
    fixture.briefings.gate.open();
    settle();
    EXPECT_EQ(session().upcomingMeetings().at(0).id, u"e-2"_s);
    EXPECT_FALSE(session().isLoadingMeetings());
}

TEST_F(CalendarTest, withoutATokenNothingIsFetchedAndNothingIsWrong) {
    fixture.auth->accessToken.reset();
    session().setCalendarError(u"old"_s);
    fetch();
    EXPECT_EQ(requests(), 0);
    EXPECT_FALSE(session().isLoadingMeetings());
    EXPECT_EQ(session().calendarError(), u"old"_s);
}

TEST_F(CalendarTest, anotherTryClearsTheError) {
    session().setCalendarError(u"old"_s);
    fetch();
    EXPECT_EQ(session().calendarError(), std::nullopt);
}

TEST_F(CalendarTest, aRefusedTokenIsRenewedAndTheFetchRepeatedOnce) {
    const LogCapture log{u"Session"_s};
    fixture.auth->renewedToken = u"renewed"_s;
    fixture.briefings.respond = [this] { return requests() == 1 ? refusal(401) : FakeBriefings::Meetings{oneMeeting}; };
    fetch();
    EXPECT_EQ(fixture.briefings.tokens, (QStringList{u"token"_s, u"renewed"_s}));
    EXPECT_TRUE(fixture.did("auth.invalidateToken"));
    EXPECT_EQ(session().upcomingMeetings(), oneMeeting);
    EXPECT_EQ(session().calendarError(), std::nullopt);
    EXPECT_FALSE(session().isLoadingMeetings());
    EXPECT_EQ(log.infos(), QStringList{u"Calendar 401 — refreshing token"_s});
    fetch();
    EXPECT_EQ(requests(), 2);
}

TEST_F(CalendarTest, aRenewedTokenThatIsRefusedIsNotRenewedAgain) {
    const LogCapture log{u"Session"_s};
    fixture.auth->renewedToken = u"renewed"_s;
    fixture.briefings.respond = [] { return refusal(401); };
    fetch();
    EXPECT_EQ(requests(), 2);
    EXPECT_EQ(session().calendarError(), u"Briefing API error (HTTP 401)"_s);
    EXPECT_FALSE(session().isLoadingMeetings());
    EXPECT_EQ(log.errors(), QStringList{u"Calendar retry failed: Briefing API error (HTTP 401)"_s});
    EXPECT_EQ(std::ranges::count(fixture.log, "auth.invalidateToken"), 1);
}

TEST_F(CalendarTest, withNoTokenToRenewTheSignInHasExpired) {
    fixture.briefings.respond = [] { return refusal(401); };
    fetch();
    EXPECT_EQ(requests(), 1);
    EXPECT_EQ(session().calendarError(), u"Authentication expired"_s);
    EXPECT_FALSE(session().isLoadingMeetings());
}

TEST_F(CalendarTest, anyOtherFailureIsShownNextToTheOldList) {
    const LogCapture log{u"Session"_s};
    fetch();
    fixture.briefings.respond = [] { return refusal(500); };
    session().fetchUpcomingMeetings(true);
    settle();
    EXPECT_EQ(session().calendarError(), u"Briefing API error (HTTP 500)"_s);
    EXPECT_EQ(session().upcomingMeetings(), oneMeeting);
    EXPECT_FALSE(session().isLoadingMeetings());
    EXPECT_FALSE(fixture.did("auth.invalidateToken"));
    EXPECT_EQ(log.errors(), QStringList{u"Failed to fetch meetings: Briefing API error (HTTP 500)"_s});
    EXPECT_TRUE(fixture.debugLines().contains(u"CALENDAR_ERROR: Briefing API error (HTTP 500)"_s));
}

TEST_F(CalendarTest, aServerOutOfReachIsAnyOtherFailure) {
    fixture.briefings.respond = [] { return FakeBriefings::Meetings{std::unexpected(FakeHttp::unreachable())}; };
    fetch();
    EXPECT_EQ(session().calendarError(), u"The server is out of reach."_s);
    EXPECT_EQ(requests(), 1);
}

TEST_F(CalendarTest, aFailedFetchLeavesTheAgeOfTheListAlone) {
    fetch();
    settleAfter(fixture.clock, 200s);
    fixture.briefings.respond = [] { return refusal(500); };
    session().fetchUpcomingMeetings(true);
    settleAfter(fixture.clock, 100s);
    fetch();
    EXPECT_EQ(requests(), 3);
}

}  // namespace corvellan::test
