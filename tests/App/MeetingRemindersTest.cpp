#include "App/MeetingReminders.h"
#include "AppFixture.h"
#include "Base/Iso8601.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class MeetingRemindersTest : public AppFixture {
protected:
    void SetUp() override {
        launch();
        session().setUserEmail(u"ada@example.com"_s);
        log.clear();
    }

    /// A meeting that starts so long from now.
    [[nodiscard]] CalendarMeeting meeting(const QString& id, std::chrono::milliseconds from) const {
        return {.id = id, .summary = u"Talk "_s + id, .start = iso8601(clock.wallNow() + from)};
    }

    void tick() { settleAfter(clock, 60s); }

    [[nodiscard]] QStringList shown() const {
        QStringList ids;
        for (const auto& request : desktop.notifications.requests)
            ids.append(request.identifier);
        return ids;
    }
};

TEST_F(MeetingRemindersTest, remindsSixtySecondsAfterTheStartAtTheEarliest) {
    session().setUpcomingMeetings({meeting(u"a"_s, 100s)});

    settleAfter(clock, 59s);
    EXPECT_TRUE(shown().empty());
    settleAfter(clock, 1s);

    EXPECT_EQ(shown(), QStringList{u"meeting-a"_s});
}

TEST_F(MeetingRemindersTest, showsWhatTheMeetingIs) {
    auto matched = meeting(u"a"_s, 100s);
    matched.matchedCompany = ResolvedCompany{.name = u"Acme"_s};
    session().setUpcomingMeetings({matched});

    tick();

    EXPECT_EQ(log, (CallLog{"notifications.requestAuthorization", "notifications.setCategory", "notifications.add"}));
    const auto& request = desktop.notifications.requests.front();
    EXPECT_EQ(request.title, u"Meeting starting soon"_s);
    EXPECT_EQ(request.subtitle, u"Talk a"_s);
    EXPECT_EQ(request.body, u"Start coaching with Corvellan Bram?"_s);
    EXPECT_EQ(request.categoryIdentifier, u"MEETING_REMINDER"_s);
    EXPECT_TRUE(request.playsDefaultSound);
    EXPECT_EQ(request.userInfo, (QMap<QString, QString>{{u"meetingId"_s, u"a"_s}, {u"company"_s, u"Acme"_s}}));
    const auto& category = desktop.notifications.categories.front();
    EXPECT_EQ(category.identifier, u"MEETING_REMINDER"_s);
    ASSERT_EQ(category.actions.size(), 1U);
    EXPECT_EQ(category.actions.front().identifier, u"START_COACHING"_s);
    EXPECT_EQ(category.actions.front().title, u"Start Coaching"_s);
    EXPECT_TRUE(category.actions.front().bringsToForeground);
}

TEST_F(MeetingRemindersTest, aMeetingWithoutACompanyGoesByItsTitle) {
    session().setUpcomingMeetings({meeting(u"a"_s, 100s)});

    tick();

    EXPECT_EQ(desktop.notifications.requests.front().userInfo.value(u"company"_s), u"Talk a"_s);
}

TEST_F(MeetingRemindersTest, aMeeting121SecondsAwayWaitsForTheNextTick) {
    session().setUpcomingMeetings({meeting(u"a"_s, 60s + 121s)});

    tick();
    EXPECT_TRUE(shown().empty());
    tick();

    EXPECT_EQ(shown(), QStringList{u"meeting-a"_s});
}

TEST_F(MeetingRemindersTest, nobodySignedInGetsNone) {
    session().setUserEmail(std::nullopt);
    ASSERT_TRUE(session().isLocalServer());
    session().setUpcomingMeetings({meeting(u"a"_s, 100s)});

    tick();

    EXPECT_TRUE(shown().empty());
}

TEST_F(MeetingRemindersTest, aRunningSessionGetsNone) {
    session().startSession();
    settle();
    ASSERT_TRUE(session().isSessionActive());
    session().setUpcomingMeetings({meeting(u"a"_s, 100s)});

    tick();

    EXPECT_TRUE(shown().empty());
}

TEST_F(MeetingRemindersTest, onlyAnExplicitNoSwitchesThemOff) {
    preferences.setBoolean(u"meetingReminders"_s, false);
    session().setUpcomingMeetings({meeting(u"a"_s, 100s)});
    tick();
    EXPECT_TRUE(shown().empty());

    preferences.setBoolean(u"meetingReminders"_s, true);
    session().setUpcomingMeetings({meeting(u"a"_s, 100s)});
    tick();
    EXPECT_EQ(shown(), QStringList{u"meeting-a"_s});
}

TEST_F(MeetingRemindersTest, twoMeetingsInTheWindowAlternate) {
    session().setUpcomingMeetings({meeting(u"a"_s, 181s), meeting(u"b"_s, 182s)});

    tick();
    EXPECT_TRUE(shown().empty());
    session().setUpcomingMeetings({meeting(u"a"_s, 120s), meeting(u"b"_s, 121s)});
    tick();
    EXPECT_EQ(shown(), QStringList{u"meeting-a"_s});
    session().setUpcomingMeetings({meeting(u"a"_s, 120s), meeting(u"b"_s, 120s)});
    tick();
    session().setUpcomingMeetings({meeting(u"a"_s, 120s), meeting(u"b"_s, 120s)});
    tick();

    EXPECT_EQ(shown(), (QStringList{u"meeting-a"_s, u"meeting-b"_s, u"meeting-a"_s}));
}

TEST_F(MeetingRemindersTest, theSameMeetingIsNotRepeated) {
    session().setUpcomingMeetings({meeting(u"a"_s, 175s)});

    tick();
    tick();

    EXPECT_EQ(shown(), QStringList{u"meeting-a"_s});
}

TEST_F(MeetingRemindersTest, aClickOnTheReminderStartsAsItsButtonDoes) {
    for (const QString& action : {defaultNotificationAction.toString(), u"START_COACHING"_s}) {
        session().setUpcomingMeetings({meeting(u"m-7"_s, 100s)});
        panel().close();
        services.ws->sent.clear();
        if (desktop.notifications.requests.empty())
            tick();
        desktop.activation.activations.clear();

        desktop.notifications.answer(action, u"token-1"_s);
        settle();

        EXPECT_TRUE(panel().isVisible());
        ASSERT_EQ(desktop.activation.activations.size(), 1U);
        EXPECT_EQ(desktop.activation.activations.front().second, u"token-1"_s);
        const auto& start = std::get<StartSessionPayload>(services.ws->sent.front().value);
        EXPECT_EQ(start.company, u"Talk m-7"_s);
        EXPECT_EQ(start.calendarEventId, u"m-7"_s);
        EXPECT_EQ(shell.infos().mid(shell.infos().size() - 2),
                  (QStringList{u"Notification action: "_s + action,
                               u"Starting coaching from notification: company=Talk m-7"_s}));
        session().stopSession();
        settleAfter(clock, 1s);
    }
}

TEST_F(MeetingRemindersTest, otherAnswersStartNothing) {
    session().setUpcomingMeetings({meeting(u"a"_s, 100s)});
    tick();

    desktop.notifications.answer(u"dismiss"_s);
    settle();

    EXPECT_EQ(shell.infos().last(), u"Notification action: dismiss"_s);
    EXPECT_EQ(session().statusText(), u"Ready"_s);
}

TEST_F(MeetingRemindersTest, anAnswerWithoutDataStartsPlainly) {
    desktop.notifications.didReceive({.actionIdentifier = u"START_COACHING"_s});
    settle();

    EXPECT_EQ(shell.infos().last(), u"Starting coaching from notification: company=nil"_s);
    const auto& start = std::get<StartSessionPayload>(services.ws->sent.front().value);
    EXPECT_EQ(start.company, std::nullopt);
    EXPECT_EQ(start.calendarEventId, std::nullopt);
}

TEST_F(MeetingRemindersTest, anAnswerDuringASessionOnlyShowsIt) {
    session().startSession({.company = u"First"_s});
    settle();
    goLive();

    desktop.notifications.didReceive({.actionIdentifier = u"START_COACHING"_s, .userInfo = {{u"company"_s, u"X"_s}}});
    settle();

    EXPECT_EQ(session().currentCompany(), u"First"_s);
    EXPECT_TRUE(session().isSessionActive());
    EXPECT_EQ(desktop.activation.activations.size(), 1U);
}

// Which meeting it is.

class MeetingToRemindOfTest : public testing::Test {
protected:
    const WallTime now = *parseIso8601(u"2026-03-02T10:00:00Z");

    [[nodiscard]] QString chosen(const std::vector<CalendarMeeting>& meetings,
                                 const std::optional<QString>& last = {}) const {
        const auto* const found = meetingToRemindOf(meetings, now, last);
        return found ? found->id : u"none"_s;
    }
    static CalendarMeeting at(const QString& start, const QString& id = u"a"_s) { return {.id = id, .start = start}; }
};

TEST_F(MeetingToRemindOfTest, startsAfterNowAndWithinTwoMinutes) {
    EXPECT_EQ(chosen({at(u"2026-03-02T10:00:00Z"_s)}), u"none"_s);
    EXPECT_EQ(chosen({at(u"2026-03-02T10:00:00.001Z"_s)}), u"a"_s);
    EXPECT_EQ(chosen({at(u"2026-03-02T10:02:00Z"_s)}), u"a"_s);
    EXPECT_EQ(chosen({at(u"2026-03-02T10:02:00.001Z"_s)}), u"none"_s);
    EXPECT_EQ(chosen({at(u"2026-03-02T09:59:59Z"_s)}), u"none"_s);
    EXPECT_EQ(chosen({at(u"2026-03-02T11:01:00+01:00"_s)}), u"a"_s);
}

TEST_F(MeetingToRemindOfTest, passesOverWhatCannotBeRead) {
    EXPECT_EQ(chosen({at(u"tomorrow"_s), at(u"2026-03-02"_s), at(u"2026-03-02T10:01:00Z"_s, u"b"_s)}), u"b"_s);
}

TEST_F(MeetingToRemindOfTest, takesTheFirstInTheirOrder) {
    EXPECT_EQ(chosen({at(u"2026-03-02T10:01:50Z"_s, u"late"_s), at(u"2026-03-02T10:00:10Z"_s, u"soon"_s)}), u"late"_s);
}

TEST_F(MeetingToRemindOfTest, passesOverTheOneOfLastTimeAndWalksOn) {
    const std::vector meetings{at(u"2026-03-02T10:01:00Z"_s, u"a"_s), at(u"2026-03-02T10:01:00Z"_s, u"b"_s)};
    EXPECT_EQ(chosen(meetings, u"a"_s), u"b"_s);
    EXPECT_EQ(chosen(meetings, u"b"_s), u"a"_s);
}

}  // namespace corvellan::test
