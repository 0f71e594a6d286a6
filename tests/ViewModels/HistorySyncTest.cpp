#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "Support/LogCapture.h"
#include "Support/SessionFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {

namespace {

const auto firstId = u"0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6"_s;
const auto secondId = u"1b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6"_s;

QJsonObject call(const QString& id, const QString& company = u"Acme"_s) {
    return {{u"id"_s, id},
            {u"session_id"_s, u"s"_s},
            {u"mode"_s, u"train"_s},
            {u"company_name"_s, company},
            {u"started_at"_s, u"2026-03-01T09:05:00Z"_s},
            {u"ended_at"_s, u"2026-03-01T09:06:15.5Z"_s},
            {u"duration_sec"_s, 75},
            {u"turns"_s, 12},
            {u"meddic"_s, QJsonObject{}},
            {u"disc"_s, QJsonObject{}},
            {u"coaching_points"_s, QJsonArray{}},
            {u"outcome"_s, u"demo_booked"_s}};
}

QByteArray list(const QJsonArray& calls) {
    return QJsonDocument{calls}.toJson(QJsonDocument::Compact);
}

class HistorySyncTest : public testing::Test {
protected:
    HistorySyncTest() {
        fixture.preferences.setString(u"serverMode"_s, u"production"_s);
        fixture.auth->accessToken = u"token"_s;
        fixture.http.answer(200, "[]");
        session().setModelContext(&store);
    }
    ~HistorySyncTest() override { session().setModelContext(nullptr); }

    SessionViewModel& session() { return fixture.session(); }
    [[nodiscard]] std::size_t requests() const { return fixture.http.requests.size(); }
    void sync() {
        session().syncHistory();
        settle();
        EXPECT_FALSE(session().isSyncingHistory());
    }
    void sync(const QJsonArray& calls) {
        fixture.http.answer(200, list(calls));
        sync();
    }
    /// In the store already.
    void keep(const std::optional<QString>& callId) {
        store.records.push_back(SessionRecord::make({.callId = callId}, fixture.clock.wallNow()));
    }

    FakeStore store;
    SessionFixture fixture;
};

}  // namespace

TEST_F(HistorySyncTest, asksForTwoHundredCallsWithTheToken) {
    sync();
    ASSERT_EQ(requests(), 1U);
    const auto& request = fixture.http.requests[0];
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.url, QUrl{u"https://coach.test/calls?limit=200"_s});
    EXPECT_EQ(request.headers, (HttpHeaders{{"Authorization", "Bearer token"}}));
    EXPECT_EQ(request.timeout, 60s);
}

TEST_F(HistorySyncTest, bringsInWhatTheStoreDoesNotKnow) {
    const LogCapture log{u"Session"_s};
    keep(firstId);
    sync({call(firstId), call(secondId, u"Nordwind"_s)});
    ASSERT_EQ(store.records.size(), 2U);
    const auto& record = store.records[1];
    EXPECT_EQ(record.callId, secondId);
    EXPECT_EQ(record.companyName, u"Nordwind"_s);
    EXPECT_EQ(record.createdDate, std::chrono::sys_days{std::chrono::year{2026} / 3 / 1} + 9h + 5min);
    EXPECT_EQ(record.durationSecs, 75);
    EXPECT_EQ(record.outcome, u"demo_booked"_s);
    EXPECT_TRUE(record.wasTrainMode);
    EXPECT_EQ(store.saves, 1);
    EXPECT_EQ(log.infos(), QStringList{u"syncHistory: imported 1 calls from server"_s});
    EXPECT_EQ(log.errors(), QStringList{});
}

TEST_F(HistorySyncTest, leavesItsTracesInTheDebugLog) {
    keep(firstId);
    keep(std::nullopt);
    const QJsonArray calls{call(firstId), call(secondId)};
    sync(calls);
    EXPECT_EQ(fixture.debugLines(), (QStringList{u"SYNC: called, isSyncing=false isLocal=false"_s,
                                                 u"SYNC: HTTP 200, decoding %1 bytes..."_s.arg(list(calls).size()),
                                                 u"SYNC: decoded 2 calls"_s, u"SYNC: existing=2 callIds=1"_s,
                                                 u"SYNC: imported=1 skipped=1"_s, u"SYNC: saved to SwiftData"_s}));
}

TEST_F(HistorySyncTest, aSecondSyncImportsNothingAndSkipsAll) {
    sync({call(firstId), call(secondId)});
    sync({call(firstId), call(secondId)});
    EXPECT_EQ(store.records.size(), 2U);
    EXPECT_EQ(store.saves, 1);
    EXPECT_EQ(fixture.debugLines().last(), u"SYNC: imported=0 skipped=2"_s);
}

TEST_F(HistorySyncTest, anIdThatOccursTwiceInOneAnswerIsImportedTwice) {
    sync({call(firstId), call(firstId)});
    EXPECT_EQ(store.records.size(), 2U);
    EXPECT_NE(store.records[0].id, store.records[1].id);
}

TEST_F(HistorySyncTest, aLocalRecordWithoutACallNeverMatches) {
    keep(std::nullopt);
    sync({call(firstId)});
    EXPECT_EQ(store.records.size(), 2U);
}

TEST_F(HistorySyncTest, theServersIdsAreComparedInLowerCase) {
    keep(firstId);
    sync({call(firstId.toUpper())});
    EXPECT_EQ(store.records.size(), 1U);
}

TEST_F(HistorySyncTest, aLocalIdInUpperCaseDoesNotMatch) {
    keep(firstId.toUpper());
    sync({call(firstId.toUpper())});
    ASSERT_EQ(store.records.size(), 2U);
    EXPECT_EQ(store.records[1].callId, firstId);
}

TEST_F(HistorySyncTest, changesAndDeletesNothing) {
    keep(firstId);
    keep(u"only here"_s);
    const auto before = store.records;
    sync({call(firstId, u"Another name"_s)});
    EXPECT_EQ(store.records, before);
    EXPECT_EQ(store.saves, 0);
}

TEST_F(HistorySyncTest, aLocalServerIsNotAsked) {
    session().setServerURL(u"ws://localhost:3001/ws"_s);
    sync();
    EXPECT_EQ(requests(), 0U);
    EXPECT_EQ(fixture.debugLines(), QStringList{u"SYNC: called, isSyncing=false isLocal=true"_s});
}

TEST_F(HistorySyncTest, aSecondRunDoesNotStartWhileOneIsUnderWay) {
    fixture.http.gate.close();
    session().syncHistory();
    EXPECT_TRUE(session().isSyncingHistory());
    settle();
    session().syncHistory();
    settle();
    EXPECT_EQ(requests(), 1U);
    EXPECT_EQ(fixture.debugLines().last(), u"SYNC: called, isSyncing=true isLocal=false"_s);
    fixture.http.gate.open();
    settle();
    EXPECT_FALSE(session().isSyncingHistory());
}

TEST_F(HistorySyncTest, withoutATokenItEndsThere) {
    fixture.auth->accessToken.reset();
    sync();
    EXPECT_EQ(requests(), 0U);
    EXPECT_EQ(fixture.debugLines().last(), u"SYNC: no token"_s);
}

TEST_F(HistorySyncTest, withoutAStoreItEndsThere) {
    session().setModelContext(nullptr);
    sync();
    EXPECT_EQ(requests(), 0U);
    EXPECT_EQ(fixture.debugLines().last(), u"SYNC: no modelContext"_s);
}

TEST_F(HistorySyncTest, aServerUrlThatIsNoneEndsItQuietly) {
    const LogCapture log{u"Session"_s};
    session().setServerURL(u"wss://[bad"_s);
    sync();
    EXPECT_EQ(requests(), 0U);
    EXPECT_EQ(log.errors(), QStringList{});
}

TEST_F(HistorySyncTest, anotherStatusIsLoggedByItsNumber) {
    const LogCapture log{u"Session"_s};
    fixture.http.answer(503, list({call(firstId)}));
    sync();
    EXPECT_EQ(log.errors(), QStringList{u"syncHistory: HTTP 503"_s});
    EXPECT_EQ(fixture.debugLines().size(), 1);
    EXPECT_EQ(store.records.size(), 0U);
}

TEST_F(HistorySyncTest, aServerOutOfReachLeavesBothLines) {
    const LogCapture log{u"Session"_s};
    fixture.http.fail();
    sync();
    EXPECT_EQ(log.errors(), QStringList{u"syncHistory: The server is out of reach."_s});
    EXPECT_EQ(fixture.debugLines().last(), u"SYNC_ERROR: The server is out of reach."_s);
}

TEST_F(HistorySyncTest, oneBadDateImportsNothingOfTheAnswer) {
    const LogCapture log{u"Session"_s};
    auto bad = call(secondId);
    bad[u"ended_at"_s] = u"yesterday"_s;
    sync({call(firstId), bad});
    EXPECT_EQ(store.records.size(), 0U);
    EXPECT_EQ(store.saves, 0);
    EXPECT_EQ(log.errors(), QStringList{u"syncHistory: Bad date: yesterday"_s});
    EXPECT_EQ(fixture.debugLines().last(), u"SYNC_ERROR: Bad date: yesterday"_s);
}

TEST_F(HistorySyncTest, anIdThatIsNoUuidImportsNothingOfTheAnswer) {
    sync({call(firstId), call(u"c-1"_s)});
    EXPECT_EQ(store.records.size(), 0U);
}

TEST_F(HistorySyncTest, oneUnknownShapeImportsNothingOfTheAnswer) {
    sync({call(firstId), 7});
    EXPECT_EQ(store.records.size(), 0U);
    fixture.http.answer(200, R"({"calls":[]})");
    sync();
    EXPECT_TRUE(fixture.debugLines().last().startsWith(u"SYNC_ERROR: "_s));
}

TEST_F(HistorySyncTest, aStoreThatCannotBeReadLeavesBothLines) {
    const LogCapture log{u"Session"_s};
    store.fetchError = Error{TransportError{u"damaged"_s}};
    sync({call(firstId)});
    EXPECT_EQ(log.errors(), QStringList{u"syncHistory: damaged"_s});
    EXPECT_EQ(fixture.debugLines().last(), u"SYNC_ERROR: damaged"_s);
    EXPECT_EQ(store.records.size(), 0U);
}

TEST_F(HistorySyncTest, aFailedSaveLeavesBothLines) {
    const LogCapture log{u"Session"_s};
    store.saveError = Error{TransportError{u"disk full"_s}};
    sync({call(firstId)});
    EXPECT_EQ(log.errors(), QStringList{u"syncHistory: disk full"_s});
    EXPECT_EQ(log.infos(), QStringList{});
    EXPECT_EQ(fixture.debugLines().last(), u"SYNC_ERROR: disk full"_s);
}

TEST_F(HistorySyncTest, anEmptyAnswerSavesNothing) {
    sync();
    EXPECT_EQ(store.saves, 0);
    EXPECT_EQ(fixture.debugLines().last(), u"SYNC: imported=0 skipped=0"_s);
}

TEST_F(HistorySyncTest, aRunThatFailedCanBeRepeated) {
    fixture.http.fail();
    sync();
    sync({call(firstId)});
    EXPECT_EQ(store.records.size(), 1U);
}

}  // namespace corvellan::test
