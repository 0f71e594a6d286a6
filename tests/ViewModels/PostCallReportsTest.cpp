#include <gtest/gtest.h>

#include <QJsonDocument>

#include "Support/LogCapture.h"
#include "Support/SessionFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {

namespace {

class PostCallReportsTest : public testing::Test {
protected:
    PostCallReportsTest() {
        fixture.preferences.setString(u"serverMode"_s, u"production"_s);
        fixture.auth->accessToken = u"token"_s;
        fixture.http.answer(204);
        session().setModelContext(&store);
    }
    ~PostCallReportsTest() override { session().setModelContext(nullptr); }

    SessionViewModel& session() { return fixture.session(); }
    [[nodiscard]] std::size_t posts() const { return fixture.http.requests.size(); }
    [[nodiscard]] const HttpRequest& post() const { return fixture.http.requests.back(); }
    [[nodiscard]] QJsonObject body() const { return QJsonDocument::fromJson(post().body).object(); }

    /// In the store already.
    SessionRecord record(const std::optional<QString>& callId = u"c-1"_s) {
        auto made = SessionRecord::make({.callId = callId}, fixture.clock.wallNow());
        store.records.push_back(made);
        return made;
    }
    void rate(int rating, const std::optional<QString>& note = {}, const std::optional<SessionRecord>& record = {}) {
        session().sendFeedback(rating, note, record);
        settle();
    }

    FakeStore store;
    SessionFixture fixture;
};

}  // namespace

// MARK: - restBaseURL and postJSON

TEST_F(PostCallReportsTest, theRestSideIsTheSocketsServer) {
    const std::vector<std::pair<QString, QString>> cases{
        {u"ws://localhost:3001/ws"_s, u"http://localhost:3001"_s},
        {u"wss://host/ws"_s, u"https://host"_s},
        // Text is replaced, wherever it stands: also where that damages a host.
        {u"wss://wss.example/ws"_s, u"https:/s.example"_s},
        {u"wss://host/ws/v2/ws?next=/ws"_s, u"https://host/v2?next="_s},
        {u"https://host/ws"_s, u"https://host"_s}};
    for (const auto& [url, base] : cases) {
        session().setServerURL(url);
        EXPECT_EQ(session().restBaseURL(), base);
    }
}

TEST_F(PostCallReportsTest, aPostCarriesTokenTypeAndBody) {
    session().postJSON(u"/some/path"_s, {{u"a"_s, QJsonObject{{u"b"_s, 1}}}, {u"text"_s, u"é"_s}});
    settle();
    ASSERT_EQ(posts(), 1U);
    EXPECT_EQ(post().method, "POST");
    EXPECT_EQ(post().url, QUrl{u"https://coach.test/some/path"_s});
    EXPECT_EQ(post().headers, (HttpHeaders{{"Authorization", "Bearer token"}, {"Content-Type", "application/json"}}));
    EXPECT_EQ(post().timeout, 60s);
    EXPECT_EQ(body(), (QJsonObject{{u"a"_s, QJsonObject{{u"b"_s, 1}}}, {u"text"_s, u"é"_s}}));
}

TEST_F(PostCallReportsTest, withoutATokenOrAUrlNothingIsPostedAndNothingSaid) {
    const LogCapture log{u"Session"_s};
    session().postJSON(u" no path:"_s, {});
    session().setServerURL(u"ws://[bad"_s);
    session().postJSON(u"/path"_s, {});
    settle();
    fixture.auth->accessToken.reset();
    session().setServerURL(u"ws://coach.test/ws"_s);
    session().postJSON(u"/path"_s, {});
    settle();
    EXPECT_EQ(posts(), 0U);
    EXPECT_EQ(log.errors(), QStringList{});
}

TEST_F(PostCallReportsTest, everyStatusOfTheTwoHundredsIsASuccess) {
    const LogCapture log{u"Session"_s};
    for (const int status : {200, 201, 204, 299}) {
        fixture.http.answer(status);
        session().postJSON(u"/path"_s, {});
        settle();
    }
    EXPECT_EQ(log.errors(), QStringList{});
}

TEST_F(PostCallReportsTest, aFailedPostIsLoggedAndNeitherRepeatedNorShown) {
    const LogCapture log{u"Session"_s};
    for (const int status : {199, 300, 401, 500}) {
        fixture.http.answer(status);
        session().postJSON(u"/path"_s, {});
        settle();
    }
    fixture.http.fail();
    session().postJSON(u"/path"_s, {});
    settleAfter(fixture.clock, 600s);
    EXPECT_EQ(log.errors(),
              (QStringList{u"POST /path: HTTP 199"_s, u"POST /path: HTTP 300"_s, u"POST /path: HTTP 401"_s,
                           u"POST /path: HTTP 500"_s, u"POST /path: The server is out of reach."_s}));
    EXPECT_EQ(posts(), 5U);
    EXPECT_EQ(session().errorMessage(), std::nullopt);
    EXPECT_FALSE(fixture.did("auth.invalidateToken"));
}

// MARK: - Feedback

TEST_F(PostCallReportsTest, aRatingIsKeptInTheRecordAndReported) {
    const auto rated = record();
    rate(1, u"Good tips"_s, rated);
    EXPECT_EQ(session().feedbackRating(), 1);
    EXPECT_TRUE(session().feedbackSubmitted());
    EXPECT_EQ(store.records[0].feedbackRating, 1);
    EXPECT_EQ(store.saves, 1);
    ASSERT_EQ(posts(), 1U);
    EXPECT_EQ(post().url, QUrl{u"https://coach.test/calls/c-1/feedback"_s});
    EXPECT_EQ(body(), (QJsonObject{{u"rating"_s, 1}, {u"note"_s, u"Good tips"_s}}));
}

TEST_F(PostCallReportsTest, theScreenKnowsOfTheRatingAtOnce) {
    session().sendFeedback(-1, {}, {});
    EXPECT_EQ(session().feedbackRating(), -1);
    EXPECT_TRUE(session().feedbackSubmitted());
}

TEST_F(PostCallReportsTest, aNoteOfEmptyTextIsLeftOut) {
    rate(-1, QString{u""_s}, record());
    EXPECT_EQ(body(), (QJsonObject{{u"rating"_s, -1}}));
    rate(-1, std::nullopt, record());
    EXPECT_EQ(body(), (QJsonObject{{u"rating"_s, -1}}));
    rate(-1, u" "_s, record());
    EXPECT_EQ(body(), (QJsonObject{{u"rating"_s, -1}, {u"note"_s, u" "_s}}));
}

TEST_F(PostCallReportsTest, withoutARecordTheLastSummaryNamesTheCall) {
    session().setLastSummary(SummaryPayload{.callId = u"c-9"_s});
    rate(1);
    EXPECT_EQ(post().url, QUrl{u"https://coach.test/calls/c-9/feedback"_s});
    EXPECT_EQ(store.saves, 0);
}

TEST_F(PostCallReportsTest, aRecordWithoutACallFallsBackOnTheLastSummaryToo) {
    session().setLastSummary(SummaryPayload{.callId = u"c-9"_s});
    rate(1, {}, record(std::nullopt));
    EXPECT_EQ(post().url, QUrl{u"https://coach.test/calls/c-9/feedback"_s});
    EXPECT_EQ(store.records[0].feedbackRating, 1);
}

TEST_F(PostCallReportsTest, withoutACallTheRatingStaysLocal) {
    rate(1, {}, record(std::nullopt));
    EXPECT_EQ(posts(), 0U);
    EXPECT_EQ(store.records[0].feedbackRating, 1);
    session().setLastSummary(SummaryPayload{});
    rate(1);
    EXPECT_EQ(posts(), 0U);
    EXPECT_TRUE(session().feedbackSubmitted());
}

TEST_F(PostCallReportsTest, aFailedSaveOrPostLeavesTheRatingShown) {
    store.saveError = Error{TransportError{u"disk full"_s}};
    fixture.http.fail();
    rate(1, {}, record());
    EXPECT_EQ(posts(), 1U);
    EXPECT_EQ(session().feedbackRating(), 1);
    EXPECT_TRUE(session().feedbackSubmitted());
    EXPECT_EQ(session().errorMessage(), std::nullopt);
}

TEST_F(PostCallReportsTest, withoutAStoreTheRatingIsReportedAllTheSame) {
    const auto rated = record();
    session().setModelContext(nullptr);
    rate(1, {}, rated);
    EXPECT_EQ(posts(), 1U);
    EXPECT_EQ(store.records[0].feedbackRating, std::nullopt);
}

// MARK: - Outcome

TEST_F(PostCallReportsTest, anOutcomeIsKeptInTheRecordAndReported) {
    session().sendOutcome(CallOutcome::demoBooked, record());
    settle();
    EXPECT_EQ(session().selectedOutcome(), CallOutcome::demoBooked);
    EXPECT_EQ(store.records[0].outcome, u"demo_booked"_s);
    EXPECT_EQ(store.saves, 1);
    EXPECT_EQ(post().url, QUrl{u"https://coach.test/calls/c-1/outcome"_s});
    EXPECT_EQ(body(), (QJsonObject{{u"outcome"_s, u"demo_booked"_s}}));
}

TEST_F(PostCallReportsTest, withoutARecordTheOutcomeIsOfTheLastSummarysCall) {
    session().setLastSummary(SummaryPayload{.callId = u"c-9"_s});
    session().sendOutcome(CallOutcome::demoBooked, std::nullopt);
    settle();
    EXPECT_EQ(post().url, QUrl{u"https://coach.test/calls/c-9/outcome"_s});
}

TEST_F(PostCallReportsTest, ratingAndOutcomeOfOneOldCopyBothStay) {
    const auto copy = record();
    session().sendFeedback(1, {}, copy);
    session().sendOutcome(CallOutcome::demoBooked, copy);
    settle();
    EXPECT_EQ(store.records[0].feedbackRating, 1);
    EXPECT_EQ(store.records[0].outcome, u"demo_booked"_s);
}

}  // namespace corvellan::test
