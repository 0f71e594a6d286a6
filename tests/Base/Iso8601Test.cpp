#include "Base/Iso8601.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

struct Case {
    QString text;
    QString expected;  // Empty: it does not parse.
};

class Iso8601Test : public testing::TestWithParam<Case> {};

TEST_P(Iso8601Test, parsesStrictly) {
    const auto time = parseIso8601(GetParam().text);
    EXPECT_EQ(time ? iso8601(*time) : QString{}, GetParam().expected) << qPrintable(GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Stamps, Iso8601Test,
                         testing::Values(Case{u"2026-03-01T09:05:00Z"_s, u"2026-03-01T09:05:00.000Z"_s},
                                         Case{u"2026-03-01T09:05:00.25Z"_s, u"2026-03-01T09:05:00.250Z"_s},
                                         Case{u"2026-03-01T09:05:00.123999Z"_s, u"2026-03-01T09:05:00.123Z"_s},
                                         Case{u"2026-03-01T09:05:00+02:00"_s, u"2026-03-01T07:05:00.000Z"_s},
                                         Case{u"2026-03-01T00:05:00-09:30"_s, u"2026-03-01T09:35:00.000Z"_s},
                                         Case{u"2026-03-01T09:05:00"_s, {}}, Case{u"2026-03-01"_s, {}},
                                         Case{u"2026-02-29T09:05:00Z"_s, {}}, Case{u"2026-03-01T24:00:00Z"_s, {}},
                                         Case{u"2026-03-01T09:05:60Z"_s, {}}, Case{u"2026-03-01 09:05:00Z"_s, {}},
                                         Case{u"2026-03-01T09:05:00.Z"_s, {}}, Case{u" 2026-03-01T09:05:00Z"_s, {}},
                                         Case{u"2026-03-01T09:05:00Zx"_s, {}}, Case{u""_s, {}},
                                         Case{u"2026-03-01T09:05:00+0200"_s, {}}));

TEST(Iso8601Test, asksForTheFractionOrForItsAbsence) {
    EXPECT_FALSE(parseIso8601(u"2026-03-01T09:05:00Z", IsoFraction::required));
    EXPECT_FALSE(parseIso8601(u"2026-03-01T09:05:00.5Z", IsoFraction::absent));
    EXPECT_TRUE(parseIso8601(u"2026-03-01T09:05:00.5Z", IsoFraction::required));
}

TEST(Iso8601Test, writesTheDebugLogsForm) {
    EXPECT_EQ(logStamp(*parseIso8601(u"2026-03-01T09:05:07.9Z")), u"2026-03-01 09:05:07 +0000");
}

}  // namespace
}  // namespace corvellan::test
