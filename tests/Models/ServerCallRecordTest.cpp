#include "Models/ServerCallRecord.h"

#include <gtest/gtest.h>

#include <chrono>
#include <QJsonArray>

#include "JsonText.h"

namespace corvellan::test {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A call with everything, as the server writes it.
QJsonObject fullCall() {
    return asJson(R"({"id":"0B5F9C1E-3D7A-4C2B-9E8F-A1B2C3D4E5F6","session_id":"s-1","mode":"live",
        "company_name":"Acme","scenario":"cto","started_at":"2026-03-01T09:05:00.250Z",
        "ended_at":"2026-03-01T10:06:15+01:00","duration_sec":75,"turns":12,
        "meddic":{"metrics":{"confirmed":true,"evidence":"x"},"economic_buyer":{"confirmed":false},
                  "champion":{"confirmed":true}},
        "disc":{"type":"steady","confidence":"high","signals":"asks for time"},
        "coaching_points":["Name the next step"],"calendar_event_id":"e-1","outcome":"demo_booked","more":{}})");
}

QByteArray listOf(const QJsonObject& call) {
    return QJsonDocument{QJsonArray{call}}.toJson();
}

QByteArray with(const QString& key, const QJsonValue& value) {
    auto call = fullCall();
    call[key] = value;
    return listOf(call);
}

QByteArray without(const QString& key) {
    auto call = fullCall();
    call.remove(key);
    return listOf(call);
}

ServerCallRecord onlyCall(const QByteArray& json) {
    const auto calls = decodeServerCalls(json);
    if (!calls || calls->size() != 1) {
        ADD_FAILURE() << (calls ? "another number of calls" : calls.error().errorDescription().toStdString());
        return {};
    }
    return calls->front();
}

const WallTime started = std::chrono::sys_days{std::chrono::year{2026} / 3 / 1} + 9h + 5min + 250ms;

TEST(ServerCallRecordTest, readsACallWithEverything) {
    const auto call = onlyCall(listOf(fullCall()));
    EXPECT_EQ(call.callId(), u"0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6"_s);
    EXPECT_EQ(call.session_id, u"s-1"_s);
    EXPECT_EQ(call.started_at, started);
    EXPECT_EQ(call.ended_at, started - 250ms + 75s);
    EXPECT_EQ(call.duration_sec, 75);
    EXPECT_EQ(call.turns, 12);
}

TEST(ServerCallRecordTest, becomesARecordWithoutATranscript) {
    const auto record = onlyCall(listOf(fullCall())).toSessionRecord();
    EXPECT_FALSE(record.id.isNull());
    EXPECT_EQ(record.createdDate, started);
    EXPECT_EQ(record.durationSecs, 75);
    EXPECT_EQ(record.turns, 12);
    EXPECT_EQ(record.meddic(), (MeddicScore{.metrics = true, .champion = true}));
    EXPECT_EQ(record.disc(), (BuyerDisc{DiscType::steady, DiscConfidence::high, u"asks for time"_s}));
    EXPECT_EQ(record.coachingPoints, QStringList{u"Name the next step"_s});
    EXPECT_EQ(record.transcript, QStringList{});
    EXPECT_EQ(record.scenario, u"cto"_s);
    EXPECT_FALSE(record.wasTrainMode);
    EXPECT_EQ(record.companyName, u"Acme"_s);
    EXPECT_EQ(record.calendarEventId, u"e-1"_s);
    EXPECT_EQ(record.callId, u"0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6"_s);
    EXPECT_EQ(record.outcome, u"demo_booked"_s);
    EXPECT_EQ(record.feedbackRating, std::nullopt);
    EXPECT_EQ(record.audience(), AudienceType::directSale);
}

TEST(ServerCallRecordTest, onlyTheWordTrainMarksATraining) {
    EXPECT_TRUE(onlyCall(with(u"mode"_s, u"train"_s)).toSessionRecord().wasTrainMode);
    EXPECT_FALSE(onlyCall(with(u"mode"_s, u"Train"_s)).toSessionRecord().wasTrainMode);
    EXPECT_FALSE(onlyCall(with(u"mode"_s, u"training"_s)).toSessionRecord().wasTrainMode);
}

TEST(ServerCallRecordTest, anEmptyDiscIsAnUnknownBuyer) {
    const BuyerDisc unknown{DiscType::unknown, DiscConfidence::low, {}};
    EXPECT_EQ(onlyCall(with(u"disc"_s, QJsonObject{})).disc.toBuyerDisc(), unknown);
    const QJsonObject nulls{{u"type"_s, QJsonValue::Null}, {u"confidence"_s, QJsonValue::Null}};
    EXPECT_EQ(onlyCall(with(u"disc"_s, nulls)).disc.toBuyerDisc(), unknown);
    const QJsonObject strange{{u"type"_s, u"Dominant"_s}, {u"confidence"_s, u"sure"_s}, {u"signals"_s, u"talks"_s}};
    EXPECT_EQ(onlyCall(with(u"disc"_s, strange)).disc.toBuyerDisc(),
              (BuyerDisc{DiscType::unknown, DiscConfidence::low, u"talks"_s}));
}

TEST(ServerCallRecordTest, aMissingCriterionIsNotMet) {
    EXPECT_EQ(onlyCall(with(u"meddic"_s, QJsonObject{})).meddic.toMeddicScore(), MeddicScore{});
    EXPECT_FALSE(onlyCall(with(u"meddic"_s, QJsonObject{{u"metrics"_s, QJsonObject{{u"confirmed"_s, true}}}}))
                     .meddic.toMeddicScore()
                     .champion);
}

TEST(ServerCallRecordTest, aCriterionMustSayWhetherItIsConfirmed) {
    EXPECT_EQ(failureOf(decodeServerCalls(with(u"meddic"_s, QJsonObject{{u"champion"_s, QJsonObject{}}}))).path,
              u"[0].meddic.champion.confirmed"_s);
}

TEST(ServerCallRecordTest, whatIsRequiredFailsTheWholeAnswer) {
    for (const auto& key : {u"id"_s, u"session_id"_s, u"mode"_s, u"started_at"_s, u"ended_at"_s, u"duration_sec"_s,
                            u"turns"_s, u"meddic"_s, u"disc"_s, u"coaching_points"_s}) {
        EXPECT_EQ(failureOf(decodeServerCalls(without(key))).path, u"[0]."_s + key);
        EXPECT_FALSE(decodeServerCalls(with(key, QJsonValue::Null))) << key.toStdString();
    }
}

TEST(ServerCallRecordTest, whatIsOptionalMayBeMissingOrNull) {
    for (const auto& key : {u"company_name"_s, u"scenario"_s, u"calendar_event_id"_s, u"outcome"_s}) {
        EXPECT_TRUE(decodeServerCalls(without(key))) << key.toStdString();
        EXPECT_TRUE(decodeServerCalls(with(key, QJsonValue::Null))) << key.toStdString();
        EXPECT_FALSE(decodeServerCalls(with(key, 7))) << key.toStdString();
    }
}

TEST(ServerCallRecordTest, aBadDateFailsTheWholeAnswerAndIsNamed) {
    for (const auto& date : {u"2026-03-01"_s, u"2026-03-01 09:05:00Z"_s, u"2026-03-01T09:05:00"_s,
                             u"2026-02-30T09:05:00Z"_s, u"2026-03-01T09:05Z"_s, u""_s, u" 2026-03-01T09:05:00Z"_s}) {
        QJsonArray calls{fullCall(), fullCall()};
        auto bad = fullCall();
        bad[u"ended_at"_s] = date;
        calls.append(bad);
        const auto failure = failureOf(decodeServerCalls(QJsonDocument{calls}.toJson()));
        EXPECT_EQ(failure.kind, DecodingError::Kind::dataCorrupted);
        EXPECT_EQ(failure.errorDescription(), u"Bad date: "_s + date);
    }
    EXPECT_EQ(failureOf(decodeServerCalls(with(u"started_at"_s, 1772355900))).kind, DecodingError::Kind::wrongType);
}

TEST(ServerCallRecordTest, anIdThatIsNoUuidFailsTheWholeAnswer) {
    for (const auto& id : {u"c-1"_s, u""_s, u"{0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6}"_s}) {
        const auto failure = failureOf(decodeServerCalls(with(u"id"_s, id)));
        EXPECT_EQ(failure.kind, DecodingError::Kind::dataCorrupted);
        EXPECT_EQ(failure.path, u"[0].id"_s);
    }
}

TEST(ServerCallRecordTest, numbersAreWholeAndSigned) {
    EXPECT_EQ(onlyCall(with(u"duration_sec"_s, -1)).duration_sec, -1);
    EXPECT_FALSE(decodeServerCalls(with(u"duration_sec"_s, 1.5)));
    EXPECT_FALSE(decodeServerCalls(with(u"turns"_s, u"12"_s)));
}

TEST(ServerCallRecordTest, theAnswerIsAListAndMayBeEmpty) {
    EXPECT_EQ(decodeServerCalls("[]").value().size(), 0U);
    EXPECT_FALSE(decodeServerCalls("{}"));
    EXPECT_FALSE(decodeServerCalls(""));
    EXPECT_FALSE(decodeServerCalls("[null]"));
}

TEST(ServerCallRecordTest, theOrderAndRepeatedIdsStay) {
    auto second = fullCall();
    second[u"session_id"_s] = u"s-2"_s;
    const auto calls = decodeServerCalls(QJsonDocument{QJsonArray{second, fullCall()}}.toJson()).value();
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].session_id, u"s-2"_s);
    EXPECT_EQ(calls[0].callId(), calls[1].callId());
}

}  // namespace
}  // namespace corvellan::test
