#include "Sandbox/StateFiles.h"

#include <gtest/gtest.h>

#include "Base/Iso8601.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using namespace sandbox;

AccountBook::State accounts() {
    AccountBook::State state{.signingKey = QByteArray(32, '\x7f'), .grants = {}};
    state.grants.insert(u"grant_1"_s, {u"anna@x.example"_s, u"corvellan-tui"_s, u"openid email"_s, u"refresh_1"_s});
    state.grants.insert(u"grant_2"_s, {u"ben@x.example"_s, u"corvellan-tui"_s, u"openid"_s, {}});
    return state;
}

CallRecord call() {
    CallRecord record{.callId = u"0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6"_s,
                      .sessionId = u"s-1"_s,
                      .start = {.company = u"Ostler & Finch"_s,
                                .hubspotId = u"7"_s,
                                .simMode = true,
                                .scenario = u"cold_call"_s,
                                .discType = DiscType::steady,
                                .calendarEventId = u"m@1"_s,
                                .audience = AudienceType::coldCall,
                                .callNotes = u"line\nline"_s,
                                .goals = std::vector{CallGoal::discovery, CallGoal::upsell},
                                .gameMode = true},
                      .startedAt = *parseIso8601(u"2026-03-01T09:05:00.250Z"_s),
                      .endedAt = *parseIso8601(u"2026-03-01T09:06:15Z"_s),
                      .durationSecs = 74,
                      .turns = 12,
                      .coachingPoints = {u"Ask more."_s},
                      .transcript = {u"[Mic] Hej"_s, u"[Audio] \u00e9\U0001F600"_s},
                      .hasSummary = true,
                      .sharesScreen = true,
                      .outcome = CallOutcome::demoBooked,
                      .feedback = {{.rating = -1, .note = u"no"_s, .featureRequest = u"more"_s}, {.rating = 1}}};
    record.state.callStage = CallStage::closing;
    record.state.meddic.champion = true;
    record.state.meddicScore = 1;
    record.state.disc = {.discType = DiscType::dominant, .confidence = DiscConfidence::high, .signals_ = u"quick"_s};
    record.state.meddicEvidence = {{}, {}, {}, {}, {}, u"I want it"_s};
    return record;
}

/// Every decoder refuses these.
const QList<QByteArray> broken{"", "{", "[]", "7", "null", "{}", QByteArray(100'000, '['), "\xff\xfe"};

QByteArray changed(QByteArray bytes, const QByteArray& from, const QByteArray& to) {
    EXPECT_TRUE(bytes.contains(from)) << bytes.constData();
    return bytes.replace(from, to);
}

}  // namespace

TEST(StateFilesTest, accountsComeBackAsTheyWere) {
    const auto bytes = encodeAccounts(accounts());
    const auto state = decodeAccounts(bytes);
    ASSERT_TRUE(state) << state.error().toStdString();
    EXPECT_EQ(state->signingKey, accounts().signingKey);
    ASSERT_EQ(state->grants.size(), 2);
    EXPECT_EQ(state->grants[u"grant_1"_s].refreshToken, u"refresh_1"_s);
    EXPECT_EQ(state->grants[u"grant_2"_s].user, u"ben@x.example"_s);
    EXPECT_EQ(encodeAccounts(*state), bytes);
}

TEST(StateFilesTest, brokenAccountsAreRefused) {
    for (const auto& bytes : broken)
        EXPECT_FALSE(decodeAccounts(bytes)) << bytes.left(20).constData();
    const auto good = encodeAccounts(accounts());
    EXPECT_FALSE(decodeAccounts(good.first(good.size() / 2)));
    EXPECT_EQ(decodeAccounts(changed(good, "\"f39/", "\"f39")).error(), u"signing_key: expected 32 bytes in base64"_s);
    EXPECT_EQ(decodeAccounts(changed(good, "\"f39/", "\"f 9/")).error(), u"signing_key: expected 32 bytes in base64"_s);
    EXPECT_EQ(decodeAccounts(changed(good, "\"user\"", "\"name\"")).error(),
              u"grants: expected sign-ins with user, client_id, scope and refresh_token"_s);
}

TEST(StateFilesTest, aCallComesBackAsItWas) {
    const auto bytes = encodeCall(call());
    const auto record = decodeCall(bytes);
    ASSERT_TRUE(record) << record.error().toStdString();
    EXPECT_EQ(record->start, call().start);
    EXPECT_EQ(record->state, call().state);
    EXPECT_EQ(record->startedAt, call().startedAt);
    EXPECT_EQ(record->transcript, call().transcript);
    EXPECT_EQ(record->feedback.at(0).featureRequest, u"more"_s);
    EXPECT_EQ(wholeCall(*record), wholeCall(call()));
    EXPECT_EQ(encodeCall(*record), bytes);
}

TEST(StateFilesTest, aBrokenCallIsRefused) {
    for (const auto& bytes : broken)
        EXPECT_FALSE(decodeCall(bytes)) << bytes.left(20).constData();
    const auto good = encodeCall(call());
    for (qsizetype length = 0; length < good.size() - 2; length += 97)
        EXPECT_FALSE(decodeCall(good.first(length)));
    EXPECT_EQ(decodeCall(changed(good, "0b5f9c1e-", "0B5F9C1E-")).error(), u"call_id: expected a UUID in lower case"_s);
    EXPECT_EQ(decodeCall(changed(good, "09:06:15.000Z", "09:66:15.000Z")).error(),
              u"ended_at: expected a date with time and zone"_s);
    EXPECT_EQ(decodeCall(changed(good, "\"turns\": 12", "\"turns\": -1")).error(),
              u"turns: expected a whole number from 0 to 2147483647"_s);
    EXPECT_EQ(decodeCall(changed(good, "\"turns\": 12", "\"turns\": 1.5")).error(),
              u"turns: expected a whole number from 0 to 2147483647"_s);
    EXPECT_EQ(decodeCall(changed(good, "demo_booked", "telepathy")).error(), u"outcome: expected an outcome"_s);
    EXPECT_EQ(decodeCall(changed(good, "\"rating\": -1", "\"rating\": -70000")).error(),
              u"feedback: expected ratings with notes"_s);
    EXPECT_TRUE(decodeCall(changed(good, "closing", "resting")).error().startsWith(u"state: "_s));
    EXPECT_TRUE(decodeCall(changed(good, "start_session", "ping")).error().startsWith(u"start: "_s));
}

TEST(StateFilesTest, theExtensionComesBackAsItWas) {
    const SensorBook::State state{
        .isConnected = true,
        .context =
            ExtensionContextPayload{
                .entityType = u"contact"_s, .entityId = u"7"_s, .companyName = u"Acme"_s, .callActive = true},
        .callStartedAt = *parseIso8601(u"2026-03-01T09:05:00.250Z"_s)};
    for (const auto& one : {state, SensorBook::State{}}) {
        const auto again = decodeSensor(encodeSensor(one));
        ASSERT_TRUE(again) << again.error().toStdString();
        EXPECT_EQ(*again, one);
    }
    for (const auto& bytes : broken)
        EXPECT_FALSE(decodeSensor(bytes)) << bytes.left(20).constData();
    EXPECT_FALSE(decodeSensor(R"({"sensor_connected":1})"));
    EXPECT_FALSE(decodeSensor(R"({"sensor_connected":true,"context":{"type":"pong"}})"));
    EXPECT_FALSE(decodeSensor(R"({"sensor_connected":true,"call_started_at":"yesterday"})"));
}

}  // namespace corvellan::test
