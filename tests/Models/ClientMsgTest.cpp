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
    ClientMsg message;
};

std::vector<Sample> samples() {
    return {
        {"startSession",
         R"({"type":"start_session","company":"Acme","hubspot_id":"12","sim_mode":true,"scenario":"price_push",
             "disc_type":"influential","calendar_event_id":"ev-3","audience":"cold_call","call_notes":"a\nb",
             "goals":["renewal","upsell"],"game_mode":true})",
         {StartSessionPayload{.company = u"Acme"_s,
                              .hubspotId = u"12"_s,
                              .simMode = true,
                              .scenario = u"price_push"_s,
                              .discType = DiscType::influential,
                              .calendarEventId = u"ev-3"_s,
                              .clientVersion = std::nullopt,
                              .audience = AudienceType::coldCall,
                              .callNotes = u"a\nb"_s,
                              .goals = std::vector{CallGoal::renewal, CallGoal::upsell},
                              .gameMode = true}}},
        {"transcriptMic",
         R"({"type":"transcript","source":"mic","text":"Hello \"you\""})",
         {ClientMsg::Transcript{AudioSourceTag::mic, u"Hello \"you\""_s}}},
        {"transcriptSystem",
         R"({"type":"transcript","source":"system","text":""})",
         {ClientMsg::Transcript{AudioSourceTag::system, u""_s}}},
        {"endSession", R"({"type":"end_session"})", {ClientMsg::EndSession{}}},
        {"setOutcome",
         R"({"type":"set_outcome","outcome":"no_interest"})",
         {ClientMsg::SetOutcome{CallOutcome::noInterest}}},
        {"submitFeedback",
         R"({"type":"submit_feedback","rating":-1,"note":"too loud","feature_request":"dark mode"})",
         {ClientMsg::SubmitFeedback{-1, u"too loud"_s, u"dark mode"_s}}},
        {"submitFeedbackAlone",
         R"({"type":"submit_feedback","rating":1})",
         {ClientMsg::SubmitFeedback{1, std::nullopt, std::nullopt}}},
        {"refreshToken", R"({"type":"refresh_token"})", {ClientMsg::RefreshToken{}}},
        {"ping", R"({"type":"ping"})", {ClientMsg::Ping{}}},
        {"setScreenShare", R"({"type":"set_screen_share","enabled":true})", {ClientMsg::SetScreenShare{true}}},
    };
}

StartSessionPayload started(const QByteArray& json) {
    return messageIn<StartSessionPayload>(ClientMsg::decode(json));
}

}  // namespace

TEST(ClientMsgTest, readsEveryMessageWrittenByHand) {
    for (const auto& sample : samples()) {
        SCOPED_TRACE(sample.name);
        const auto decoded = ClientMsg::decode(sample.json);
        ASSERT_TRUE(decoded.has_value()) << decoded.error().errorDescription().toStdString();
        EXPECT_EQ(*decoded, sample.message);
    }
}

TEST(ClientMsgTest, writesEveryMessageAsTheHandDoes) {
    for (const auto& sample : samples()) {
        SCOPED_TRACE(sample.name);
        EXPECT_EQ(asJson(*sample.message.encode()), asJson(sample.json));
    }
}

TEST(ClientMsgTest, hasASampleOfEveryMessage) {
    std::vector<std::size_t> seen;
    for (const auto& sample : samples())
        seen.push_back(sample.message.value.index());
    for (std::size_t i = 0; i < std::variant_size_v<ClientMsg::Value>; ++i)
        EXPECT_NE(std::ranges::find(seen, i), seen.end()) << i;
}

TEST(ClientMsgTest, writesTheTypeFirstAndTheKeysInTheSharedOrder) {
    const ClientMsg message{StartSessionPayload{.company = u"c"_s,
                                                .hubspotId = u"h"_s,
                                                .simMode = false,
                                                .scenario = u"s"_s,
                                                .discType = DiscType::steady,
                                                .calendarEventId = u"e"_s,
                                                .clientVersion = u"1.2"_s,
                                                .audience = AudienceType::discovery,
                                                .callNotes = u"n"_s,
                                                .goals = std::vector{CallGoal::discovery},
                                                .gameMode = false}};
    EXPECT_EQ(message.encode()->toStdString(),
              R"({"type":"start_session","company":"c","hubspot_id":"h","sim_mode":false,"scenario":"s",)"
              R"("disc_type":"steady","calendar_event_id":"e","client_version":"1.2","audience":"discovery",)"
              R"("call_notes":"n","goals":["discovery"],"game_mode":false})");
}

TEST(ClientMsgTest, aStartWithAllDefaultsHoldsWhatIsAlwaysWrittenAndTheVersion) {
    const StartSessionPayload start{.clientVersion = u"1.0"_s};
    const auto json = asJson(*ClientMsg{start}.encode());
    EXPECT_EQ(json.keys(), (QStringList{u"audience"_s, u"client_version"_s, u"game_mode"_s, u"sim_mode"_s, u"type"_s}));
    EXPECT_EQ(json[u"audience"_s], u"direct_sale"_s);
    EXPECT_EQ(json[u"game_mode"_s], QJsonValue{false});
    EXPECT_EQ(json[u"sim_mode"_s], QJsonValue{false});
}

TEST(ClientMsgTest, aStartReadsTheDefaultsOfWhatIsMissing) {
    const auto start = started(R"({"type":"start_session"})");
    EXPECT_EQ(start, StartSessionPayload{});
    EXPECT_FALSE(start.simMode);
    EXPECT_FALSE(start.gameMode);
    EXPECT_EQ(start.audience, AudienceType::directSale);
    EXPECT_EQ(started(R"({"type":"start_session","sim_mode":null,"audience":null,"game_mode":null,"goals":null})"),
              StartSessionPayload{});
}

TEST(ClientMsgTest, aStartNeverReadsTheVersion) {
    EXPECT_EQ(started(R"({"type":"start_session","client_version":"1.0"})").clientVersion, std::nullopt);
    EXPECT_EQ(started(R"({"type":"start_session","client_version":17})").clientVersion, std::nullopt);
}

TEST(ClientMsgTest, aStartIsStrictAboutWhatItHolds) {
    EXPECT_EQ(pathOf(ClientMsg::decode(R"({"type":"start_session","sim_mode":1})")), u"sim_mode"_s);
    EXPECT_EQ(pathOf(ClientMsg::decode(R"({"type":"start_session","game_mode":"true"})")), u"game_mode"_s);
    EXPECT_EQ(pathOf(ClientMsg::decode(R"({"type":"start_session","audience":"Sales"})")), u"audience"_s);
    EXPECT_EQ(pathOf(ClientMsg::decode(R"({"type":"start_session","disc_type":"random"})")), u"disc_type"_s);
    EXPECT_EQ(pathOf(ClientMsg::decode(R"({"type":"start_session","goals":["demo"]})")), u"goals[0]"_s);
    EXPECT_EQ(pathOf(ClientMsg::decode(R"({"type":"start_session","goals":["upsell",null]})")), u"goals[1]"_s);
    EXPECT_EQ(pathOf(ClientMsg::decode(R"({"type":"start_session","goals":{}})")), u"goals"_s);
}

TEST(ClientMsgTest, noGoalsAndAnEmptyListOfGoalsDiffer) {
    EXPECT_FALSE(ClientMsg{StartSessionPayload{}}.encode()->contains("goals"));
    const StartSessionPayload empty{.goals = std::vector<CallGoal>{}};
    EXPECT_TRUE(ClientMsg{empty}.encode()->contains(R"("goals":[])"));
    EXPECT_EQ(started(R"({"type":"start_session","goals":[]})").goals, std::vector<CallGoal>{});
}

TEST(ClientMsgTest, aRatingIsASigned16BitInteger) {
    const auto rating = [](const QByteArray& number) {
        return ClientMsg::decode(R"({"type":"submit_feedback","rating":)" + number + '}');
    };
    EXPECT_EQ(messageIn<ClientMsg::SubmitFeedback>(rating("32767")).rating, 32767);
    EXPECT_EQ(messageIn<ClientMsg::SubmitFeedback>(rating("-32768")).rating, -32768);
    for (const auto* number : {"32768", "-32769", "0.5", "\"1\"", "true", "null", "18446744073709551615"})
        EXPECT_EQ(pathOf(rating(number)), u"rating"_s) << number;
    // Outside the range it cannot even be written.
    static_assert(std::same_as<decltype(ClientMsg::SubmitFeedback::rating), std::int16_t>);
}

TEST(ClientMsgTest, requiredFieldsMayBeNeitherMissingNorNullNorOfAnotherType) {
    const QStringList optional{u"company"_s,   u"hubspot_id"_s,        u"sim_mode"_s, u"scenario"_s,
                               u"disc_type"_s, u"calendar_event_id"_s, u"audience"_s, u"call_notes"_s,
                               u"goals"_s,     u"game_mode"_s,         u"note"_s,     u"feature_request"_s};
    for (const auto& sample : samples()) {
        const auto whole = asJson(sample.json);
        for (const auto& key : whole.keys()) {
            SCOPED_TRACE(std::string{sample.name} + "." + key.toStdString());
            const auto with = [&](const QJsonValue& value) {
                auto json = whole;
                json[key] = value;
                return ClientMsg::decode(QJsonDocument{json}.toJson());
            };
            auto without = whole;
            without.remove(key);
            const auto missing = ClientMsg::decode(QJsonDocument{without}.toJson());
            if (optional.contains(key)) {
                ASSERT_TRUE(missing.has_value());
                EXPECT_EQ(missing.value(), with(QJsonValue::Null).value());
                EXPECT_NE(missing.value(), sample.message);
            } else {
                EXPECT_EQ(pathOf(missing), key);
                EXPECT_EQ(failureOf(missing).kind, DecodingError::Kind::missingField);
                EXPECT_EQ(pathOf(with(QJsonValue::Null)), key);
            }
            EXPECT_EQ(pathOf(with(QJsonObject{})), key);
        }
    }
}

TEST(ClientMsgTest, unknownWordsFail) {
    EXPECT_EQ(failureOf(ClientMsg::decode(R"({"type":"transcript","source":"speaker","text":""})")).detail,
              u"speaker"_s);
    EXPECT_EQ(pathOf(ClientMsg::decode(R"({"type":"set_outcome","outcome":"demoBooked"})")), u"outcome"_s);
    EXPECT_EQ(pathOf(ClientMsg::decode(R"({"type":"pong"})")), u"type"_s);
}

TEST(ClientMsgTest, textsKeepEveryCharacter) {
    for (const auto& text : {u"\U0001F600 \u00fc \u0000 \u0001 \u001f \" \\ / \u2028"_s, u"\ufeffmarked"_s,
                             u"\ufeff\ufeff"_s, u"\uffff\ufffe"_s, QString{}}) {
        const ClientMsg message{ClientMsg::Transcript{AudioSourceTag::mic, text}};
        const auto bytes = *message.encode();
        EXPECT_EQ(ClientMsg::decode(bytes).value(), message);
        // Qt's reader takes a leading byte-order mark away.
        if (!text.startsWith(QChar::ByteOrderMark))
            EXPECT_EQ(asJson(bytes)[u"text"_s].toString(), text);
    }
}

TEST(ClientMsgTest, halfASurrogatePairIsWrittenAsAReplacement) {
    const QString broken = QString{QChar{0xD83D}} + u"x"_s;
    const auto bytes = ClientMsg{ClientMsg::Transcript{AudioSourceTag::mic, broken}}.encode();
    ASSERT_TRUE(bytes.has_value());
    EXPECT_EQ(messageIn<ClientMsg::Transcript>(ClientMsg::decode(*bytes)).text, u"?x"_s);
}

}  // namespace corvellan
