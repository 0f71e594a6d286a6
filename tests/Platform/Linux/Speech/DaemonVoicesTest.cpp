#include "Platform/Linux/Speech/DaemonVoices.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

const QByteArray listing =
    "249-Afrikaans\taf\tnone\r\n"
    "249-English (America)\ten-us\tnone\r\n"
    "249-English (America)+Adam\ten-us\tAdam\r\n"
    "249-Zoë\ten-GB\t\r\n"
    "249 OK VOICE LIST SENT\r\n";

std::vector<QByteArrayView> linesOf(QByteArrayView answer) {
    return answerLines(answer).value_or(std::vector<QByteArrayView>{"no answer"});
}

TEST(DaemonVoicesTest, theLinesOfAnAnswerComeWithoutTheirNumbers) {
    EXPECT_EQ(linesOf("251-espeak-ng\r\n251 OK GET RETURNED\r\n"), std::vector<QByteArrayView>{"espeak-ng"});
    EXPECT_EQ(linesOf("251-a\n251-\n251 OK\n"), (std::vector<QByteArrayView>{"a", ""}));
    EXPECT_TRUE(linesOf("202 OK RECEIVED\r\n").empty());
}

TEST(DaemonVoicesTest, anErrorAndWhatBreaksOffIsNoAnswer) {
    for (const char* answer :
         {"", "\n", "\r\n", "2", "2\n", "249\r\n", "514 ERR PARAMETER INVALID\r\n", "249-a\r\n", "249-a\r\n249 OK",
          "249-a\r\n300 OK\r\n", "249-a\r\n\r\n249 OK\r\n", "249+a\r\n249 OK\r\n"})
        EXPECT_FALSE(answerLines(answer)) << answer;
}

TEST(DaemonVoicesTest, areTheEnglishOnesWithoutTheirVariantsInTheListsOrder) {
    EXPECT_EQ(parseDaemonVoices(listing, "espeak-ng"),
              (std::vector<SpeechVoice>{{.language = u"en-US"_s, .name = u"English (America)"_s},
                                        {.language = u"en-GB"_s, .name = u"Zoë"_s}}));
}

TEST(DaemonVoicesTest, aPersonsRecordingsMakeThemEnhanced) {
    for (const char* module : {"espeak-ng-mbrola", "espeak-ng-mbrola-generic", "Piper-generic", "mimic3", "rhvoice"})
        EXPECT_EQ(parseDaemonVoices(listing, module).at(0).quality, VoiceQuality::enhanced) << module;
    for (const char* module : {"espeak-ng", "flite", "festival", ""})
        EXPECT_EQ(parseDaemonVoices(listing, module).at(0).quality, VoiceQuality::standard) << module;
}

TEST(DaemonVoicesTest, linesOfAnotherShapeAreLeftOut) {
    EXPECT_TRUE(parseDaemonVoices("249-English\r\n249-\ten\tnone\r\n249 OK\r\n", "espeak-ng").empty());
    EXPECT_EQ(parseDaemonVoices("249-Kal\ten\r\n249 OK\r\n", "flite").size(), 1U);
}

TEST(DaemonVoicesTest, aByteOrderMarkIsAName) {
    EXPECT_EQ(parseDaemonVoices("249-\xEF\xBB\xBF\ten\r\n249 OK\r\n", "flite").at(0).name,
              QString{QChar::ByteOrderMark});
}

TEST(DaemonVoicesTest, aListThatBreaksOffHasNone) {
    EXPECT_TRUE(parseDaemonVoices(listing.first(listing.size() - 3), "espeak-ng").empty());
}

}  // namespace
}  // namespace corvellan::test
