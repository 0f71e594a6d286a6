#include "SignedInFixture.h"

namespace corvellan::test {

namespace {

class CoachConnectionTest : public SignedInFixture {};

constexpr const char* plainStart =
    R"({"type":"start_session","sim_mode":false,"audience":"direct_sale","game_mode":false})";

const QStringList stateKeys{u"call_phase"_s,      u"call_stage"_s,   u"disc"_s,     u"meddic"_s,
                            u"meddic_evidence"_s, u"meddic_score"_s, u"sentiment"_s};

}  // namespace

TEST_F(CoachConnectionTest, startsASessionWithATokenAndAnAddressForEachSide) {
    start();
    WireClient client{coachUrl()};
    client.send(plainStart);
    const auto started = client.next();
    EXPECT_EQ(started[u"type"_s], u"session_started"_s);
    EXPECT_FALSE(started[u"session_id"_s].toString().isEmpty());
    const auto mic = started[u"openai_ephemeral_token"_s].toString();
    const auto system = started[u"openai_ephemeral_token_system"_s].toString();
    EXPECT_GE(mic.size(), 40);
    EXPECT_GE(system.size(), 40);
    EXPECT_NE(mic, system);
    const QString url = u"ws://127.0.0.1:%1/v1/realtime?intent=transcription"_s.arg(box->providerPort());
    EXPECT_EQ(started[u"openai_realtime_url"_s], url);
    EXPECT_EQ(started[u"openai_realtime_url_system"_s], url);
    EXPECT_EQ(started.size(), 6);
}

TEST_F(CoachConnectionTest, namesTheProviderAtTheHostThatTheClientUsed) {
    start();
    QUrl url = coachUrl(u"127.0.0.2"_s);
    url.setQuery(u"token="_s + tokenFor());
    WireClient client{url};
    client.send(plainStart);
    EXPECT_EQ(client.next()[u"openai_realtime_url"_s],
              u"ws://127.0.0.2:%1/v1/realtime?intent=transcription"_s.arg(box->providerPort()));
}

TEST_F(CoachConnectionTest, givesTrainingNoTokenForTheSystemSide) {
    start();
    WireClient client{coachUrl()};
    client.send(R"({"type":"start_session","sim_mode":true,"scenario":"cold_call","audience":"cold_call"})");
    const auto started = client.next();
    EXPECT_TRUE(started.contains(u"openai_ephemeral_token"_s));
    EXPECT_FALSE(started.contains(u"openai_ephemeral_token_system"_s));
    EXPECT_FALSE(started.contains(u"openai_realtime_url_system"_s));
}

TEST_F(CoachConnectionTest, acceptsEveryKeyOfAStart) {
    start();
    WireClient client{coachUrl()};
    client.send(R"({"type":"start_session","company":"Halden Freight","hubspot_id":"42","sim_mode":false,"scenario":"s",
        "disc_type":"steady","calendar_event_id":"c-1","client_version":"0.1.0","audience":"channel_partner",
        "call_notes":"Rep context:\nBe kind","goals":["discovery","upsell"],"game_mode":true})");
    EXPECT_EQ(client.next()[u"type"_s], u"session_started"_s);
    const auto crm = client.next();
    EXPECT_EQ(crm[u"type"_s], u"crm_data"_s);
    EXPECT_EQ(crm[u"company_name"_s], u"Halden Freight"_s);
    EXPECT_TRUE(crm[u"summary"_s].toString().startsWith(u"Halden Freight: 140 trucks"_s));
}

TEST_F(CoachConnectionTest, answersATranscriptWithATip) {
    start();
    WireClient client{coachUrl()};
    client.send(plainStart);
    client.send(R"({"type":"transcript","source":"system","text":"Planning by hand is a real problem for us."})");
    EXPECT_EQ(client.next()[u"type"_s], u"session_started"_s);
    const auto tip = client.next();
    EXPECT_EQ(tip[u"type"_s], u"coaching"_s);
    EXPECT_EQ(tip[u"coaching_type"_s], u"data_point"_s);
    EXPECT_EQ(tip[u"urgency"_s], u"medium"_s);
    EXPECT_EQ(tip[u"message"_s], u"Pain found. Ask what it costs them."_s);
    const auto state = tip[u"state"_s].toObject();
    EXPECT_EQ(state.keys(), stateKeys);
    EXPECT_EQ(state[u"meddic_score"_s].toInt(), 1);
    EXPECT_EQ(state[u"meddic"_s].toObject()[u"identify_pain"_s], true);
    EXPECT_EQ(state[u"meddic"_s].toObject()[u"metrics"_s], false);
    const auto evidence = state[u"meddic_evidence"_s].toArray();
    ASSERT_EQ(evidence.size(), 6);
    EXPECT_TRUE(evidence[0].isNull());
    EXPECT_EQ(evidence[4], u"Planning by hand is a real problem for us."_s);
    EXPECT_EQ(state[u"disc"_s].toObject().keys(), (QStringList{u"confidence"_s, u"signals"_s, u"type"_s}));
}

TEST_F(CoachConnectionTest, closesWithASummaryAndThenCode1000) {
    start({.closeAfter = std::chrono::seconds{2}});
    WireClient client{coachUrl()};
    client.send(plainStart);
    client.send(R"({"type":"transcript","source":"mic","text":"How do you plan your tours?"})");
    client.send(R"({"type":"transcript","source":"system","text":"By hand."})");
    EXPECT_EQ(client.next(u"coaching"_s)[u"coaching_type"_s], u"stage_transition"_s);
    EXPECT_EQ(client.next()[u"type"_s], u"coaching"_s);
    settleAfter(clock, std::chrono::milliseconds{65'900});
    client.send(R"({"type":"end_session"})");
    const auto summary = client.next();
    EXPECT_EQ(summary[u"type"_s], u"summary"_s);
    EXPECT_EQ(summary[u"duration_secs"_s].toInt(), 65);
    EXPECT_EQ(summary[u"turns"_s].toInt(), 2);
    EXPECT_EQ(summary[u"meddic"_s].toObject()[u"identify_pain"_s], true);
    EXPECT_EQ(summary[u"disc"_s].toObject()[u"type"_s], u"unknown"_s);
    EXPECT_FALSE(summary[u"coaching_points"_s].toArray().isEmpty());
    EXPECT_EQ(summary[u"transcript"_s].toArray(),
              (QJsonArray{u"[Mic] How do you plan your tours?"_s, u"[Coach] Discovery now. Ask, then listen."_s,
                          u"[Audio] By hand."_s, u"[Coach] Pain found. Ask what it costs them."_s}));
    const auto callId = summary[u"call_id"_s].toString();
    EXPECT_EQ(callId.size(), 36);
    EXPECT_EQ(callId, callId.toLower());

    settleAfter(clock, std::chrono::milliseconds{1900});
    EXPECT_FALSE(client.isClosed());
    settleAfter(clock, std::chrono::milliseconds{200});
    ASSERT_TRUE(client.closes());
    EXPECT_EQ(client.closeCode(), 1000);
}

TEST_F(CoachConnectionTest, sendsOneSummaryForTwoEnds) {
    start();
    WireClient client{coachUrl()};
    client.send(plainStart);
    client.send(R"({"type":"end_session"})");
    client.send(R"({"type":"end_session"})");
    client.send(R"({"type":"transcript","source":"mic","text":"Are you still there?"})");
    client.send(R"({"type":"ping"})");
    EXPECT_EQ(client.next()[u"type"_s], u"session_started"_s);
    EXPECT_EQ(client.next()[u"type"_s], u"summary"_s);
    EXPECT_EQ(client.next()[u"type"_s], u"pong"_s);
}

TEST_F(CoachConnectionTest, answersAPingAtAnyTime) {
    start();
    WireClient client{coachUrl()};
    client.send(R"({"type":"ping"})");
    EXPECT_EQ(client.next(), (QJsonObject{{u"type"_s, u"pong"_s}}));
}

TEST_F(CoachConnectionTest, refreshesATokenThatTheProviderTakes) {
    start();
    WireClient client{coachUrl()};
    client.send(plainStart);
    client.send(R"({"type":"refresh_token"})");
    const auto started = client.next();
    const auto refreshed = client.next();
    EXPECT_EQ(refreshed[u"type"_s], u"token_refreshed"_s);
    EXPECT_GT(refreshed[u"expires_at"_s].toInteger(), 1'700'000'000);
    WireClient provider{QUrl{started[u"openai_realtime_url"_s].toString()},
                        refreshed[u"openai_ephemeral_token"_s].toString()};
    EXPECT_TRUE(provider.connects());
}

class RefusedMessage : public SandboxFixture, public testing::WithParamInterface<const char*> {};

TEST_P(RefusedMessage, isAnsweredWithAnErrorAndTheConnectionStaysUp) {
    start();
    WireClient client{coachUrl()};
    client.send(plainStart);
    EXPECT_EQ(client.next()[u"type"_s], u"session_started"_s);
    client.send(GetParam());
    const auto error = client.next();
    EXPECT_EQ(error[u"type"_s], u"error"_s);
    EXPECT_FALSE(error[u"message"_s].toString().isEmpty());
    EXPECT_TRUE(logs(u"refused a message"_s));
    client.send(R"({"type":"ping"})");
    EXPECT_EQ(client.next()[u"type"_s], u"pong"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, RefusedMessage,
    testing::Values("", "no json", "[]", "{}", R"({"type":"dance"})", R"({"type":7})",
                    R"({"type":"transcript","source":"mic"})", R"({"type":"transcript","text":"Hello"})",
                    R"({"type":"transcript","source":"phone","text":"Hello"})",
                    R"({"type":"transcript","source":"mic","text":7})", R"({"type":"set_outcome","outcome":"won"})",
                    R"({"type":"submit_feedback","rating":40000})", R"({"type":"submit_feedback","rating":0.5})",
                    R"({"type":"set_screen_share"})", R"({"type":"start_session"})"));

class EarlyMessage : public SandboxFixture, public testing::WithParamInterface<const char*> {};

TEST_P(EarlyMessage, needsASession) {
    start();
    WireClient client{coachUrl()};
    client.send(GetParam());
    const auto error = client.next();
    EXPECT_EQ(error[u"type"_s], u"error"_s);
    EXPECT_TRUE(error[u"message"_s].toString().endsWith(u"before start_session"_s));
}

INSTANTIATE_TEST_SUITE_P(Messages, EarlyMessage,
                         testing::Values(R"({"type":"transcript","source":"mic","text":"Hello"})",
                                         R"({"type":"end_session"})", R"({"type":"refresh_token"})",
                                         R"({"type":"set_outcome","outcome":"follow_up"})",
                                         R"({"type":"submit_feedback","rating":1})",
                                         R"({"type":"set_screen_share","enabled":true})"));

TEST_F(CoachConnectionTest, refusesABinaryFrame) {
    start();
    WireClient client{coachUrl()};
    ASSERT_TRUE(client.connects());
    client.socket().sendBinaryMessage(R"({"type":"ping"})");
    EXPECT_EQ(client.next()[u"type"_s], u"error"_s);
}

TEST_F(CoachConnectionTest, keepsWhatWasHeardAndSaidOfACall) {
    start();
    WireClient client{coachUrl()};
    client.send(R"({"type":"start_session","company":"Northwind","goals":["renewal"]})");
    client.send(R"({"type":"set_screen_share","enabled":true})");
    client.send(R"({"type":"transcript","source":"system","text":"We renew if the price is right."})");
    client.send(R"({"type":"end_session"})");
    client.send(R"({"type":"set_outcome","outcome":"follow_up"})");
    client.send(R"({"type":"submit_feedback","rating":-1,"note":"too late","feature_request":"fewer tips"})");
    client.send(R"({"type":"ping"})");
    const auto summary = client.next(u"summary"_s);
    EXPECT_EQ(client.next()[u"type"_s], u"pong"_s);
    const auto callId = summary[u"call_id"_s].toString();

    const auto list = get(u"/calls?limit=200"_s).array();
    ASSERT_EQ(list.size(), 1);
    const auto listed = list[0].toObject();
    EXPECT_EQ(listed[u"id"_s], callId);
    EXPECT_EQ(listed[u"mode"_s], u"live"_s);
    EXPECT_EQ(listed[u"company_name"_s], u"Northwind"_s);
    EXPECT_EQ(listed[u"started_at"_s], u"2026-03-02T10:00:00.000Z"_s);
    EXPECT_EQ(listed[u"turns"_s].toInt(), 1);
    EXPECT_EQ(listed[u"outcome"_s], u"follow_up"_s);
    EXPECT_EQ(listed[u"meddic"_s].toObject()[u"champion"_s].toObject()[u"confirmed"_s], false);

    const auto whole = get(u"/calls/"_s + callId).object();
    EXPECT_EQ(whole[u"stage"_s], u"renewal"_s);
    EXPECT_EQ(whole[u"has_summary"_s], true);
    EXPECT_EQ(whole[u"shares_screen"_s], true);
    EXPECT_EQ(whole[u"transcript"_s].toArray().first(), u"[Audio] We renew if the price is right."_s);
    const auto feedback = whole[u"feedback"_s].toArray();
    ASSERT_EQ(feedback.size(), 1);
    EXPECT_EQ(feedback[0].toObject(),
              (QJsonObject{{u"rating"_s, -1}, {u"note"_s, u"too late"_s}, {u"feature_request"_s, u"fewer tips"_s}}));
    EXPECT_EQ(get(u"/calls/nothing"_s, 404).object()[u"error"_s], u"no such call"_s);
    EXPECT_EQ(get(u"/calls?limit=none"_s, 400).object()[u"error"_s], u"limit is a number from 1"_s);
}

TEST_F(CoachConnectionTest, keepsACallWhoseConnectionIsLost) {
    start();
    {
        WireClient client{coachUrl()};
        client.send(plainStart);
        EXPECT_EQ(client.next()[u"type"_s], u"session_started"_s);
        EXPECT_TRUE(get(u"/calls"_s).array().isEmpty());  // Still running.
    }
    ASSERT_TRUE(spinUntil([&] { return logs(u"lost within a session"_s); }));
    const auto calls = get(u"/calls"_s).array();
    ASSERT_EQ(calls.size(), 1);
    EXPECT_EQ(get(u"/calls/"_s + calls[0].toObject()[u"id"_s].toString()).object()[u"has_summary"_s], false);
}

TEST_F(CoachConnectionTest, letsAClientListenBesideASession) {
    start();
    WireClient listener{coachUrl()};
    ASSERT_TRUE(listener.connects());
    WireClient client{coachUrl()};
    client.send(plainStart);
    client.send(R"({"type":"end_session"})");
    EXPECT_EQ(client.next(u"summary"_s)[u"type"_s], u"summary"_s);
    settleAfter(clock, std::chrono::seconds{1});
    ASSERT_TRUE(client.closes());
    listener.send(R"({"type":"ping"})");
    EXPECT_EQ(listener.next()[u"type"_s], u"pong"_s);
}

TEST_F(CoachConnectionTest, refusesAWebSocketOnAnotherPath) {
    start();
    WireClient client{QUrl{u"ws://127.0.0.1:%1/other"_s.arg(box->coachPort())}};
    EXPECT_FALSE(client.connects());
}

TEST_F(CoachConnectionTest, asksAPlainRequestForAWebSocket) {
    start();
    EXPECT_TRUE(get(u"/ws"_s, 426).isNull());
}

TEST_F(CoachConnectionTest, answersHealthOnTheSamePort) {
    start();
    EXPECT_EQ(get(u"/health"_s).object()[u"status"_s], u"ok"_s);
}

TEST_F(CoachConnectionTest, neverWritesATokenToItsLog) {
    start();
    WireClient client{coachUrl()};
    client.send(plainStart);
    const auto started = client.next();
    WireClient provider{QUrl{started[u"openai_realtime_url"_s].toString()},
                        started[u"openai_ephemeral_token"_s].toString()};
    ASSERT_TRUE(provider.connects());
    EXPECT_TRUE(logs(u"connected"_s));
    EXPECT_FALSE(logs(started[u"openai_ephemeral_token"_s].toString()));
}

TEST_F(CoachConnectionTest, tellsWhyAPortCannotBeHad) {
    start();
    const auto second =
        sandbox::Sandbox::start({.coachPort = box->coachPort(), .chatPort = 0, .providerPort = 0}, clock, log);
    ASSERT_FALSE(second);
    EXPECT_TRUE(second.error().errorDescription().startsWith(u"Cannot listen on 127.0.0.1:%1"_s.arg(box->coachPort())));
}

}  // namespace corvellan::test
