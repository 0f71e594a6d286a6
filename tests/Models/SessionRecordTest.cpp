#include <gtest/gtest.h>

#include "JsonText.h"
#include "Models/SessionRecord.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

constexpr WallTime madeAt{std::chrono::milliseconds{1'772'445'600'250}};

SessionRecord lasting(std::int64_t seconds) {
    SessionRecord record;
    record.durationSecs = seconds;
    return record;
}

}  // namespace

TEST(SessionRecordTest, isMadeWithAnIdOfItsOwnAndTheTimeOfMaking) {
    const auto first = SessionRecord::make({}, madeAt);
    const auto second = SessionRecord::make({}, madeAt);
    EXPECT_FALSE(first.id.isNull());
    EXPECT_NE(first.id, second.id);
    EXPECT_EQ(first.createdDate, madeAt);
}

TEST(SessionRecordTest, keepsWhatItIsMadeOf) {
    const MeddicScore score{.decisionProcess = true};
    const BuyerDisc buyer{DiscType::steady, DiscConfidence::medium, u"slow and kind"_s};
    const auto record = SessionRecord::make({.durationSecs = 61,
                                             .turns = 7,
                                             .meddic = score,
                                             .disc = buyer,
                                             .coachingPoints = {u"p"_s},
                                             .transcript = {u"[Mic] a"_s, u"no prefix"_s},
                                             .scenario = u"s"_s,
                                             .wasTrainMode = true,
                                             .companyName = u"c"_s,
                                             .calendarEventId = u"e"_s,
                                             .callId = u"i"_s,
                                             .audience = AudienceType::channelPartner},
                                            madeAt);
    EXPECT_EQ(record.durationSecs, 61);
    EXPECT_EQ(record.turns, 7);
    EXPECT_EQ(record.meddic(), score);
    EXPECT_EQ(record.disc(), buyer);
    EXPECT_EQ(record.coachingPoints, QStringList{u"p"_s});
    EXPECT_EQ(record.transcript, (QStringList{u"[Mic] a"_s, u"no prefix"_s}));
    EXPECT_EQ(record.scenario, u"s"_s);
    EXPECT_TRUE(record.wasTrainMode);
    EXPECT_EQ(record.companyName, u"c"_s);
    EXPECT_EQ(record.calendarEventId, u"e"_s);
    EXPECT_EQ(record.callId, u"i"_s);
    EXPECT_EQ(record.audienceRaw, u"channel_partner"_s);
    EXPECT_EQ(record.audience(), AudienceType::channelPartner);
}

TEST(SessionRecordTest, startsWithoutOutcomeRatingAndEvidence) {
    const auto record = SessionRecord::make({}, madeAt);
    EXPECT_EQ(record.outcome, std::nullopt);
    EXPECT_EQ(record.feedbackRating, std::nullopt);
    EXPECT_EQ(record.meddicEvidence, std::nullopt);
}

TEST(SessionRecordTest, storesScoreAndBuyerUnderTheKeysOfTheProtocol) {
    const auto record = SessionRecord::make({.meddic = {.identifyPain = true}}, madeAt);
    EXPECT_EQ(test::asJson(record.meddicData),
              test::asJson(R"({"metrics":false,"economic_buyer":false,"decision_criteria":false,
                               "decision_process":false,"identify_pain":true,"champion":false})"));
    EXPECT_EQ(test::asJson(record.discData), test::asJson(R"({"type":"unknown","confidence":"low","signals":""})"));
}

TEST(SessionRecordTest, emptyMeddicDataReadsAsAScoreOfZero) {
    EXPECT_EQ(SessionRecord{}.meddic().score(), 0);
}

TEST(SessionRecordTest, undecodableBytesReadAsTheDefaults) {
    SessionRecord record;
    for (const auto& bytes : {QByteArray{}, QByteArray{"{}"}, QByteArray{"\xff\x00", 2}, QByteArray{"[true]"},
                              QByteArray{R"({"metrics":true,"champion":true})"}}) {
        record.meddicData = bytes;
        record.discData = bytes;
        EXPECT_EQ(record.meddic(), MeddicScore{});
        EXPECT_EQ(record.disc(), BuyerDisc{});
    }
}

TEST(SessionRecordTest, theAudienceIsReadFromItsRawValue) {
    SessionRecord record;
    record.audienceRaw = u"cold_call"_s;
    EXPECT_EQ(record.audience(), AudienceType::coldCall);
}

TEST(SessionRecordTest, anAbsentOrUnknownAudienceReadsAsADirectSale) {
    SessionRecord record;
    EXPECT_EQ(record.audience(), AudienceType::directSale);
    for (const auto& word : {u"webinar"_s, u""_s, u"coldCall"_s, u"c\u00f6ld"_s}) {
        record.audienceRaw = word;
        EXPECT_EQ(record.audience(), AudienceType::directSale);
    }
}

TEST(SessionRecordTest, durationsAreMinutesAndSecondsWithoutPadding) {
    EXPECT_EQ(lasting(0).formattedDuration(), u"0m 0s"_s);
    EXPECT_EQ(lasting(59).formattedDuration(), u"0m 59s"_s);
    EXPECT_EQ(lasting(60).formattedDuration(), u"1m 0s"_s);
    EXPECT_EQ(lasting(75).formattedDuration(), u"1m 15s"_s);
    EXPECT_EQ(lasting(3600).formattedDuration(), u"60m 0s"_s);
}

}  // namespace corvellan
