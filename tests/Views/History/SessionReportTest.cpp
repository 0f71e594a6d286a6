#include "Views/History/SessionReport.h"

#include <gtest/gtest.h>

#include "HistoryRecords.h"

namespace corvellan::test {

namespace {

SessionRecord bare() {
    return SessionRecord::make({.durationSecs = 75, .turns = 4}, noonish);
}

QStringList linesOf(const SessionRecord& record) {
    return sessionShareText(record, berlin()).split(u'\n');
}

}  // namespace

TEST(SessionReportTest, aFullReportReadsLineByLine) {
    auto record = SessionRecord::make({.durationSecs = 3725,
                                       .turns = 42,
                                       .meddic = {.metrics = true, .identifyPain = true},
                                       .disc = {DiscType::dominant, DiscConfidence::high, u"short answers"_s},
                                       .coachingPoints = {u"Ask who signs"_s, u"Name the next step"_s},
                                       .transcript = {u"[Mic] Hello"_s, u"[Audio] Hi"_s, u"no prefix"_s},
                                       .wasTrainMode = true,
                                       .companyName = u"Nordwind"_s},
                                      noonish);
    record.meddicEvidence = std::vector<std::optional<QString>>{u"20 % churn"_s, std::nullopt, u"fast"_s};
    EXPECT_EQ(sessionShareText(record, berlin()),
              u"# Corvellan Bram — Session Report\n"
              "\n"
              "**Company:** Nordwind\n"
              "**Date:** 02.03.2026, 11:00\n"
              "**Duration:** 62m 5s\n"
              "**Turns:** 42\n"
              "**Mode:** Training\n"
              "\n"
              "## MEDDIC: 2/6\n"
              "  + **M** Metrics — 20 % churn\n"
              "  - **E** Economic Buyer\n"
              "  - **D** Decision Criteria — fast\n"
              "  - **D** Decision Process\n"
              "  + **I** Pain\n"
              "  - **C** Champion\n"
              "\n"
              "**DISC:** Dominant\n"
              "\n"
              "## Key Points\n"
              "- Ask who signs\n"
              "- Name the next step\n"
              "\n"
              "## Transcript\n"
              "[Mic] Hello\n"
              "[Audio] Hi\n"
              "no prefix"_s);
}

TEST(SessionReportTest, whatARecordLacksHasNoLine) {
    EXPECT_EQ(sessionShareText(bare(), berlin()),
              u"# Corvellan Bram — Session Report\n"
              "\n"
              "**Date:** 02.03.2026, 11:00\n"
              "**Duration:** 1m 15s\n"
              "**Turns:** 4\n"
              "\n"
              "## MEDDIC: 0/6\n"
              "  - **M** Metrics\n"
              "  - **E** Economic Buyer\n"
              "  - **D** Decision Criteria\n"
              "  - **D** Decision Process\n"
              "  - **I** Pain\n"
              "  - **C** Champion\n"
              "\n"
              "**DISC:** Unknown\n"_s);
}

TEST(SessionReportTest, withoutTranscriptOneLineFeedEndsTheLastLine) {
    auto record = bare();
    record.coachingPoints = QStringList{u"Ask who signs"_s};
    EXPECT_TRUE(sessionShareText(record, berlin()).endsWith(u"- Ask who signs\n"_s));
    record.transcript = QStringList{u"[Mic] Bye"_s};
    EXPECT_TRUE(sessionShareText(record, berlin()).endsWith(u"- Ask who signs\n\n## Transcript\n[Mic] Bye"_s));
}

TEST(SessionReportTest, evidenceOfThreeCriteriaStandsOnTheFirstThreeLines) {
    auto record = bare();
    record.meddicEvidence = std::vector<std::optional<QString>>{u"a"_s, u"b"_s, u"c"_s};
    const auto lines = linesOf(record);
    const auto first = lines.indexOf(u"  - **M** Metrics — a"_s);
    ASSERT_GT(first, 0);
    EXPECT_EQ(lines.mid(first, 6), (QStringList{u"  - **M** Metrics — a"_s, u"  - **E** Economic Buyer — b"_s,
                                                u"  - **D** Decision Criteria — c"_s, u"  - **D** Decision Process"_s,
                                                u"  - **I** Pain"_s, u"  - **C** Champion"_s}));
}

TEST(SessionReportTest, moreEvidenceThanCriteriaIsLeftOut) {
    auto record = bare();
    record.meddicEvidence = std::vector<std::optional<QString>>(9, u"x"_s);
    EXPECT_EQ(sessionShareText(record, berlin()).count(u" — x"_s), 6);
}

TEST(SessionReportTest, anEmptyCompanyIsStillOne) {
    auto record = bare();
    record.companyName = u""_s;
    EXPECT_TRUE(linesOf(record).contains(u"**Company:** "_s));
}

TEST(SessionReportTest, theBuyersTypeIsCapitalised) {
    for (const auto& [type, name] :
         {std::pair{DiscType::influential, u"Influential"_s}, std::pair{DiscType::steady, u"Steady"_s},
          std::pair{DiscType::conscientious, u"Conscientious"_s}, std::pair{DiscType::unknown, u"Unknown"_s}})
        EXPECT_EQ(discName(SessionRecord::make({.disc = {.discType = type}}, noonish)), name);
}

}  // namespace corvellan::test
