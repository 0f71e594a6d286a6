#include "Views/History/TranscriptRole.h"

#include <gtest/gtest.h>

#include <array>

namespace corvellan::test {

using namespace Qt::StringLiterals;

TEST(TranscriptRoleTest, thePrefixTellsTheRole) {
    struct Row {
        QString line;
        TranscriptRole role;
        QString text;
    };
    for (const Row& row : {
             Row{u"[Mic] hello"_s, TranscriptRole::mic, u"hello"_s},
             Row{u"[Audio] hello"_s, TranscriptRole::audio, u"hello"_s},
             Row{u"[Coach] tip"_s, TranscriptRole::coach, u"tip"_s},
             Row{u"hello"_s, TranscriptRole::unknown, u"hello"_s},
             Row{u""_s, TranscriptRole::unknown, u""_s},
             Row{u"[Mic]hello"_s, TranscriptRole::unknown, u"[Mic]hello"_s},
             Row{u"[mic] hello"_s, TranscriptRole::unknown, u"[mic] hello"_s},
             Row{u" [Mic] hello"_s, TranscriptRole::unknown, u" [Mic] hello"_s},
             Row{u"[Mic] "_s, TranscriptRole::mic, u""_s},
             Row{u"[Mic]  two"_s, TranscriptRole::mic, u" two"_s},
             Row{u"[Mic] [Coach] tip"_s, TranscriptRole::mic, u"[Coach] tip"_s},
             Row{u"[System] hello"_s, TranscriptRole::unknown, u"[System] hello"_s},
         })
        EXPECT_EQ(parseTranscriptLine(row.line), (ParsedLine{row.role, row.text})) << qPrintable(row.line);
}

TEST(TranscriptRoleTest, aPrefixIsStrippedOnceOrAbsent) {
    EXPECT_EQ(stripPrefix(u"abab"_s, u"ab"), u"ab"_s);
    EXPECT_EQ(stripPrefix(u"ab"_s, u"ab"), u""_s);
    EXPECT_EQ(stripPrefix(u"a"_s, u"ab"), std::nullopt);
    EXPECT_EQ(stripPrefix(u"ab"_s, u""), u"ab"_s);
}

}  // namespace corvellan::test
