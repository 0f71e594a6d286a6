#include <gtest/gtest.h>

#include <algorithm>
#include <QJsonArray>

#include "JsonText.h"
#include "Models/Protocol.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

using test::asJson;
using test::failureOf;
using test::messageIn;
using test::pathOf;

/// A hand-written message and what it means.
struct Sample {
    const char* name;
    QByteArray json;
    ServerMsg message;
};

const MeddicScore threeCriteria{.metrics = true, .decisionCriteria = true, .champion = true};

std::vector<Sample> samples() {
    return {
        {"sessionStarted",
         R"({"type":"session_started","session_id":"s-1","openai_ephemeral_token":"ek_mic",
             "openai_realtime_url":"wss://a.example/v1","openai_ephemeral_token_system":"ek_sys",
             "openai_realtime_url_system":"wss://b.example/v1"})",
         {SessionStartedPayload{.sessionId = u"s-1"_s,
                                .openaiEphemeralToken = u"ek_mic"_s,
                                .openaiRealtimeUrl = u"wss://a.example/v1"_s,
                                .openaiEphemeralTokenSystem = u"ek_sys"_s,
                                .openaiRealtimeUrlSystem = u"wss://b.example/v1"_s}}},
        {"coaching",
         R"({"type":"coaching","message":"Ask who signs","coaching_type":"question_prompt","urgency":"high",
             "product_hint":"Vault","state":{"call_stage":"objection_handling","meddic_score":3,
             "meddic":{"metrics":true,"economic_buyer":false,"decision_criteria":true,"decision_process":false,
             "identify_pain":false,"champion":true},
             "disc":{"type":"dominant","confidence":"high","signals":"short answers"},"sentiment":"skeptical",
             "meddic_evidence":["30 % faster",null,"SOC 2",null,null,"Ana"],"call_phase":"closing in"}})",
         {CoachingPayload{
             .message = u"Ask who signs"_s,
             .coachingType = CoachingType::questionPrompt,
             .urgency = CoachingUrgency::high,
             .productHint = u"Vault"_s,
             .state = {.callStage = CallStage::objectionHandling,
                       .meddicScore = 3,
                       .meddic = threeCriteria,
                       .disc = {DiscType::dominant, DiscConfidence::high, u"short answers"_s},
                       .sentiment = CustomerSentiment::skeptical,
                       .meddicEvidence = std::vector<std::optional<QString>>{u"30 % faster"_s, std::nullopt, u"SOC 2"_s,
                                                                             std::nullopt, std::nullopt, u"Ana"_s},
                       .callPhase = u"closing in"_s}}}},
        {"crmData",
         R"({"type":"crm_data","company_name":"Örsted & Söhne","summary":"Customer since 2019"})",
         {ServerMsg::CrmData{u"Örsted & Söhne"_s, u"Customer since 2019"_s}}},
        {"summary",
         R"({"type":"summary","duration_secs":754,"turns":42,
             "meddic":{"metrics":true,"economic_buyer":false,"decision_criteria":true,"decision_process":false,
             "identify_pain":false,"champion":true},
             "disc":{"type":"steady","confidence":"medium","signals":""},
             "coaching_points":["Good opening","Name the price"],
             "transcript":["[Mic] Hello","[Audio] Hi","[Coach] Ask why"],"call_id":"c-9"})",
         {SummaryPayload{.durationSecs = 754,
                         .turns = 42,
                         .meddic = threeCriteria,
                         .disc = {DiscType::steady, DiscConfidence::medium, {}},
                         .coachingPoints = {u"Good opening"_s, u"Name the price"_s},
                         .transcript = {u"[Mic] Hello"_s, u"[Audio] Hi"_s, u"[Coach] Ask why"_s},
                         .callId = u"c-9"_s}}},
        {"tokenRefreshed",
         R"({"type":"token_refreshed","openai_ephemeral_token":"ek_new","expires_at":1772445600})",
         {ServerMsg::TokenRefreshed{u"ek_new"_s, 1'772'445'600}}},
        {"counterpartToken",
         R"({"type":"counterpart_token","delta":" well,"})",
         {ServerMsg::CounterpartToken{u" well,"_s}}},
        {"counterpartDone", R"({"type":"counterpart_done","latency_ms":812})", {ServerMsg::CounterpartDone{812}}},
        {"error", R"({"type":"error","message":"No seats left"})", {ServerMsg::Failure{u"No seats left"_s}}},
        {"pong", R"({"type":"pong"})", {ServerMsg::Pong{}}},
        {"extensionContext",
         R"({"type":"extension_context","entity_type":"company","entity_id":"77","display_name":"Acme Ltd",
             "company_name":"Acme","hubspot_company_id":"991","call_active":true})",
         {ExtensionContextPayload{.entityType = u"company"_s,
                                  .entityId = u"77"_s,
                                  .displayName = u"Acme Ltd"_s,
                                  .companyName = u"Acme"_s,
                                  .hubspotCompanyId = u"991"_s,
                                  .callActive = true}}},
        {"extensionCallEnded",
         R"({"type":"extension_call_ended","duration_secs":61})",
         {ServerMsg::ExtensionCallEnded{61}}},
    };
}

/// The smallest "coaching" message, in pieces that tests exchange.
QByteArray coaching(const QByteArray& state) {
    return R"({"type":"coaching","message":"m","coaching_type":"whisper","state":)" + state + '}';
}

QByteArray state(const QByteArray& score = "1", const QByteArray& sentiment = R"("neutral")",
                 const QByteArray& discType = R"("unknown")", const QByteArray& more = {}) {
    return R"({"call_stage":"demo","meddic_score":)" + score +
           R"(,"meddic":{"metrics":false,"economic_buyer":false,"decision_criteria":false,"decision_process":false,)"
           R"("identify_pain":false,"champion":false},"disc":{"type":)" +
           discType + R"(,"confidence":"low","signals":""},"sentiment":)" + sentiment + more + '}';
}

QByteArray summary(const QByteArray& duration, const QByteArray& turns = "1") {
    return R"({"type":"summary","duration_secs":)" + duration + R"(,"turns":)" + turns +
           R"(,"meddic":{"metrics":false,"economic_buyer":false,"decision_criteria":false,"decision_process":false,)"
           R"("identify_pain":false,"champion":false},"disc":{"type":"unknown","confidence":"low","signals":""},)"
           R"("coaching_points":[],"transcript":[]})";
}

}  // namespace

TEST(ServerMsgTest, readsEveryMessageWrittenByHand) {
    for (const auto& sample : samples()) {
        SCOPED_TRACE(sample.name);
        const auto decoded = ServerMsg::decode(sample.json);
        ASSERT_TRUE(decoded.has_value()) << decoded.error().errorDescription().toStdString();
        EXPECT_EQ(*decoded, sample.message);
    }
}

TEST(ServerMsgTest, writesEveryMessageAsTheHandDoes) {
    for (const auto& sample : samples()) {
        SCOPED_TRACE(sample.name);
        const auto encoded = sample.message.encode();
        ASSERT_TRUE(encoded.has_value());
        EXPECT_EQ(asJson(*encoded), asJson(sample.json)) << encoded->constData();
    }
}

TEST(ServerMsgTest, hasASampleOfEveryMessage) {
    std::vector<std::size_t> seen;
    for (const auto& sample : samples())
        seen.push_back(sample.message.value.index());
    for (std::size_t i = 0; i < std::variant_size_v<ServerMsg::Value>; ++i)
        EXPECT_NE(std::ranges::find(seen, i), seen.end()) << i;
}

TEST(ServerMsgTest, writesTheTypeFirst) {
    for (const auto& sample : samples())
        EXPECT_TRUE(sample.message.encode()->startsWith(R"({"type":")")) << sample.name;
}

TEST(ServerMsgTest, writesTheKeysInTheSharedOrder) {
    const ServerMsg message{ServerMsg::CrmData{u"A"_s, u"B"_s}};
    EXPECT_EQ(*message.encode(), R"({"type":"crm_data","company_name":"A","summary":"B"})");
}

TEST(ServerMsgTest, findsTheTypeWhereverItStands) {
    EXPECT_EQ(messageIn<ServerMsg::Failure>(ServerMsg::decode(R"({"message":"x","type":"error"})")).message, u"x"_s);
}

TEST(ServerMsgTest, decodesAPong) {
    EXPECT_EQ(ServerMsg::decode(R"({"type":"pong"})").value(), ServerMsg{ServerMsg::Pong{}});
}

TEST(ServerMsgTest, ignoresKeysThatTheMessageDoesNotKnow) {
    EXPECT_EQ(ServerMsg::decode(R"({"type":"pong","x":1})").value(), ServerMsg{ServerMsg::Pong{}});
    // Known to other messages, and of a type that would fail there.
    EXPECT_EQ(ServerMsg::decode(R"({"type":"pong","message":1,"state":[],"duration_secs":-4})").value(),
              ServerMsg{ServerMsg::Pong{}});
}

TEST(ServerMsgTest, aStartedSessionMayHoldItsIdAlone) {
    const auto started =
        messageIn<SessionStartedPayload>(ServerMsg::decode(R"({"type":"session_started","session_id":"abc"})"));
    EXPECT_EQ(started.sessionId, u"abc"_s);
    EXPECT_FALSE(started.openaiEphemeralToken || started.openaiRealtimeUrl || started.openaiEphemeralTokenSystem ||
                 started.openaiRealtimeUrlSystem);
}

TEST(ServerMsgTest, anEndedExtensionCallNeedsNoDuration) {
    EXPECT_EQ(messageIn<ServerMsg::ExtensionCallEnded>(ServerMsg::decode(R"({"type":"extension_call_ended"})")),
              ServerMsg::ExtensionCallEnded{});
}

TEST(ServerMsgTest, aFinishedCounterpartNeedsItsLatency) {
    const auto error = failureOf(ServerMsg::decode(R"({"type":"counterpart_done"})"));
    EXPECT_EQ(error.kind, DecodingError::Kind::missingField);
    EXPECT_EQ(error.path, u"latency_ms"_s);
}

TEST(ServerMsgTest, aRefreshedTokenTravelsUnderTheTokenKeyOfTheMicrophoneAndHasNoUrl) {
    const auto encoded = asJson(*ServerMsg{ServerMsg::TokenRefreshed{u"t"_s, 5}}.encode());
    EXPECT_EQ(encoded.keys(), (QStringList{u"expires_at"_s, u"openai_ephemeral_token"_s, u"type"_s}));
    EXPECT_EQ(pathOf(ServerMsg::decode(R"({"type":"token_refreshed","token":"t","expires_at":5})")),
              u"openai_ephemeral_token"_s);
}

TEST(ServerMsgTest, discObjectsUseTheKeyTypeAndNeverDiscType) {
    EXPECT_EQ(asJson(encode(BuyerDisc{})).keys(), (QStringList{u"confidence"_s, u"signals"_s, u"type"_s}));
    EXPECT_EQ(failureOf(decodeBuyerDisc(R"({"disc_type":"steady","confidence":"low","signals":""})")).path, u"type"_s);
}

TEST(ServerMsgTest, aMeddicScoreOf300FailsTheMessage) {
    EXPECT_TRUE(ServerMsg::decode(coaching(state("255"))).has_value());
    for (const auto* score : {"256", "300", "-1", "1.5"})
        EXPECT_EQ(pathOf(ServerMsg::decode(coaching(state(score)))), u"state.meddic_score"_s) << score;
    EXPECT_EQ(failureOf(ServerMsg::decode(coaching(state("300")))).kind, DecodingError::Kind::outOfRange);
}

TEST(ServerMsgTest, aFractionalOrNegativeDurationFailsTheMessage) {
    for (const auto* duration : {"12.5", "-1", "-1.0", "1e-3", "0.1", "1e400", "-1e400"})
        EXPECT_EQ(pathOf(ServerMsg::decode(summary(duration))).toStdString(), "duration_secs") << duration;
}

TEST(ServerMsgTest, wholeNumbersMayBeWrittenWithAPointOrAnExponent) {
    EXPECT_EQ(messageIn<SummaryPayload>(ServerMsg::decode(summary("42.0"))).durationSecs, 42U);
    EXPECT_EQ(messageIn<SummaryPayload>(ServerMsg::decode(summary("1e3"))).durationSecs, 1000U);
    EXPECT_EQ(messageIn<SummaryPayload>(ServerMsg::decode(summary("1.25E2"))).durationSecs, 125U);
    EXPECT_EQ(messageIn<SummaryPayload>(ServerMsg::decode(summary("0", "-42.00"))).turns, -42);
    EXPECT_EQ(messageIn<SummaryPayload>(ServerMsg::decode(summary("-0"))).durationSecs, 0U);
    EXPECT_EQ(messageIn<SummaryPayload>(ServerMsg::decode(summary("-0.0"))).durationSecs, 0U);
}

TEST(ServerMsgTest, integersAreExactTo64Bits) {
    EXPECT_EQ(messageIn<SummaryPayload>(ServerMsg::decode(summary("18446744073709551615"))).durationSecs,
              18'446'744'073'709'551'615U);
    EXPECT_EQ(messageIn<SummaryPayload>(ServerMsg::decode(summary("9007199254740993"))).durationSecs,
              9'007'199'254'740'993U);
    EXPECT_EQ(messageIn<SummaryPayload>(ServerMsg::decode(summary("0", "9223372036854775807"))).turns,
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(messageIn<SummaryPayload>(ServerMsg::decode(summary("0", "-9223372036854775808"))).turns,
              std::numeric_limits<std::int64_t>::min());
    const ServerMsg message{ServerMsg::CounterpartDone{18'446'744'073'709'551'615U}};
    EXPECT_EQ(*message.encode(), R"({"type":"counterpart_done","latency_ms":18446744073709551615})");
}

TEST(ServerMsgTest, integersBeyond64BitsFail) {
    EXPECT_EQ(pathOf(ServerMsg::decode(summary("18446744073709551616"))), u"duration_secs"_s);
    EXPECT_EQ(pathOf(ServerMsg::decode(summary("0", "9223372036854775808"))), u"turns"_s);
    EXPECT_EQ(pathOf(ServerMsg::decode(summary("0", "-9223372036854775809"))), u"turns"_s);
    EXPECT_EQ(pathOf(ServerMsg::decode(summary("1e20"))), u"duration_secs"_s);
}

TEST(ServerMsgTest, evidenceMayHoldNullsBetweenStrings) {
    const auto decoded = messageIn<CoachingPayload>(ServerMsg::decode(
        coaching(state("1", R"("neutral")", R"("unknown")", R"(,"meddic_evidence":["a",null,"b"])"))));
    const std::vector<std::optional<QString>> expected{u"a"_s, std::nullopt, u"b"_s};
    EXPECT_EQ(decoded.state.meddicEvidence, expected);
    EXPECT_TRUE(ServerMsg{decoded}.encode()->contains(R"("meddic_evidence":["a",null,"b"])"));
}

TEST(ServerMsgTest, evidenceOfAnotherTypeFailsTheMessage) {
    const auto withEvidence = [](const QByteArray& evidence) {
        return ServerMsg::decode(
            coaching(state("1", R"("neutral")", R"("unknown")", R"(,"meddic_evidence":)" + evidence)));
    };
    EXPECT_EQ(pathOf(withEvidence(R"(["a",1])")), u"state.meddic_evidence[1]"_s);
    EXPECT_EQ(pathOf(withEvidence(R"("a")")), u"state.meddic_evidence"_s);
    EXPECT_EQ(messageIn<CoachingPayload>(withEvidence("null")).state.meddicEvidence, std::nullopt);
    EXPECT_EQ(messageIn<CoachingPayload>(withEvidence("[]")).state.meddicEvidence->size(), 0U);
}

TEST(ServerMsgTest, listsOfStringsHoldNoNulls) {
    auto json = summary("1");
    json.replace(R"("transcript":[])", R"("transcript":["a",null])");
    EXPECT_EQ(pathOf(ServerMsg::decode(json)), u"transcript[1]"_s);
}

TEST(ServerMsgTest, anUnknownTypeFails) {
    const auto error = failureOf(ServerMsg::decode(R"({"type":"coach_mood"})"));
    EXPECT_EQ(error.kind, DecodingError::Kind::unknownValue);
    EXPECT_EQ(error.path, u"type"_s);
    EXPECT_EQ(error.detail, u"coach_mood"_s);
}

TEST(ServerMsgTest, messagesOfTheClientAreUnknown) {
    EXPECT_EQ(failureOf(ServerMsg::decode(R"({"type":"ping"})")).kind, DecodingError::Kind::unknownValue);
}

TEST(ServerMsgTest, aMissingNullOrForeignTypeFails) {
    EXPECT_EQ(failureOf(ServerMsg::decode("{}")).kind, DecodingError::Kind::missingField);
    EXPECT_EQ(failureOf(ServerMsg::decode(R"({"type":null})")).kind, DecodingError::Kind::wrongType);
    EXPECT_EQ(failureOf(ServerMsg::decode(R"({"type":7})")).kind, DecodingError::Kind::wrongType);
}

TEST(ServerMsgTest, anUnknownWordAtAnyDepthFailsTheWholeMessage) {
    const auto unknown = [](const QByteArray& json) {
        const auto error = failureOf(ServerMsg::decode(json));
        EXPECT_EQ(error.kind, DecodingError::Kind::unknownValue) << json.constData();
        return error.path.toStdString();
    };
    EXPECT_EQ(unknown(R"({"type":"coaching","message":"m","coaching_type":"nudge","state":)" + state() + '}'),
              "coaching_type");
    EXPECT_EQ(unknown(R"({"type":"coaching","message":"m","coaching_type":"listen","urgency":"soon","state":)" +
                      state() + '}'),
              "urgency");
    EXPECT_EQ(unknown(coaching(state("1", R"("bored")"))), "state.sentiment");
    EXPECT_EQ(unknown(coaching(state("1", R"("neutral")", R"("Dominant")"))), "state.disc.type");
    EXPECT_EQ(unknown(coaching(state().replace("demo", "chat"))), "state.call_stage");
    EXPECT_EQ(unknown(coaching(state().replace(R"("low")", R"("none")"))), "state.disc.confidence");
}

TEST(ServerMsgTest, requiredFieldsMayBeNeitherMissingNorNullNorOfAnotherType) {
    // Takes each field of each sample away in turn. What is left out here may be absent.
    const QStringList optional{u"openai_ephemeral_token"_s,
                               u"openai_realtime_url"_s,
                               u"openai_ephemeral_token_system"_s,
                               u"openai_realtime_url_system"_s,
                               u"urgency"_s,
                               u"product_hint"_s,
                               u"summary"_s,
                               u"call_id"_s,
                               u"display_name"_s,
                               u"hubspot_company_id"_s};
    for (const auto& sample : samples()) {
        const auto whole = asJson(sample.json);
        const bool isExtension = whole[u"type"_s].toString().startsWith(u"extension_"_s);
        for (const auto& key : whole.keys()) {
            SCOPED_TRACE(std::string{sample.name} + "." + key.toStdString());
            const bool isOptional = (optional.contains(key) && whole[u"type"_s] != u"token_refreshed"_s) ||
                                    (isExtension && (key == u"company_name"_s || key == u"duration_secs"_s));
            auto without = whole;
            without.remove(key);
            auto withNull = whole;
            withNull[key] = QJsonValue::Null;
            auto withOther = whole;
            withOther[key] = whole[key].isArray() ? QJsonValue{QJsonObject{}} : QJsonValue{QJsonArray{}};
            const auto decode = [](const QJsonObject& json) {
                return ServerMsg::decode(QJsonDocument{json}.toJson(QJsonDocument::Compact));
            };
            if (isOptional) {
                ASSERT_TRUE(decode(without).has_value());
                ASSERT_TRUE(decode(withNull).has_value());
                EXPECT_EQ(decode(without).value(), decode(withNull).value());
                EXPECT_NE(decode(without).value(), sample.message);
            } else {
                EXPECT_EQ(pathOf(decode(without)), key);
                EXPECT_EQ(pathOf(decode(withNull)), key);
            }
            EXPECT_EQ(pathOf(decode(withOther)), key);
        }
    }
}

TEST(ServerMsgTest, everyFieldOfTheStateIsRequiredButEvidenceAndPhase) {
    const auto whole = asJson(coaching(state()));
    const auto inner = whole[u"state"_s].toObject();
    for (const auto& key : inner.keys()) {
        auto cut = inner;
        cut.remove(key);
        auto message = whole;
        message[u"state"_s] = cut;
        EXPECT_EQ(pathOf(ServerMsg::decode(QJsonDocument{message}.toJson())), u"state."_s + key);
    }
    EXPECT_EQ(inner.size(), 5);
}

TEST(ServerMsgTest, absentOptionalsAreLeftOutAndNeverNull) {
    const auto bytes = *ServerMsg{CoachingPayload{}}.encode();
    EXPECT_FALSE(bytes.contains("null"));
    const auto json = asJson(bytes);
    EXPECT_EQ(json.keys(), (QStringList{u"coaching_type"_s, u"message"_s, u"state"_s, u"type"_s}));
    EXPECT_EQ(json[u"state"_s].toObject().keys(),
              (QStringList{u"call_stage"_s, u"disc"_s, u"meddic"_s, u"meddic_score"_s, u"sentiment"_s}));
}

TEST(ServerMsgTest, aPayloadIsNeverNested) {
    EXPECT_EQ(pathOf(ServerMsg::decode(R"({"type":"error","error":{"message":"x"}})")), u"message"_s);
}

}  // namespace corvellan
