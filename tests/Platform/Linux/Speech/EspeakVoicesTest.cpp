#include "Platform/Linux/Speech/EspeakVoices.h"

#include <gtest/gtest.h>

#include <QStringList>

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

const QByteArray listing =
    "Pty Language       Age/Gender VoiceName          File                 Other Languages\n"
    " 2  en-gb           --/M      English_(Great_Britain) gmw/en               (en 2)\n"
    " 2  en-us           --/M      English_(America)  gmw/en-US            (en 3)\n"
    " 5  en-us           --/F      us-mbrola-1        mb/mb-us1            (en 8)\n"
    " 9  en              --/F      en-german-1        mb/mb-de1-en         \n"
    " 5  variant         --/M      Storm              !v/Storm             (en-us 5)\n";

bool nothing(const QString&) {
    return false;
}

TEST(EspeakVoicesTest, areReadFromTheListInItsOrder) {
    const auto voices = parseEspeakVoices(listing, nothing);
    const EspeakVoice british{
        .voice = {.language = u"en-GB"_s, .quality = VoiceQuality::standard, .name = u"English (Great Britain)"_s},
        .identifier = u"gmw/en"_s};
    const EspeakVoice american{
        .voice = {.language = u"en-US"_s, .quality = VoiceQuality::standard, .name = u"English (America)"_s},
        .identifier = u"gmw/en-US"_s};
    EXPECT_EQ(voices, (std::vector{british, american}));
}

TEST(EspeakVoicesTest, ofMbrolaAreEnhancedAndThereOnlyWithTheirDatabase) {
    QStringList asked;
    const auto voices = parseEspeakVoices(listing, [&asked](const QString& database) {
        asked.append(database);
        return true;
    });
    EXPECT_EQ(asked, (QStringList{u"us1"_s, u"de1"_s}));
    ASSERT_EQ(voices.size(), 4U);
    EXPECT_EQ(voices[2].voice,
              (SpeechVoice{.language = u"en-US"_s, .quality = VoiceQuality::enhanced, .name = u"us-mbrola-1"_s}));
    EXPECT_EQ(voices[2].identifier, u"mb/mb-us1"_s);
    // Who learnt to speak in another language makes no better English voice.
    EXPECT_EQ(voices[3].voice.quality, VoiceQuality::standard);
}

TEST(EspeakVoicesTest, leavesOutLinesOfAnotherShape) {
    EXPECT_TRUE(parseEspeakVoices("", nothing).empty());
    EXPECT_TRUE(parseEspeakVoices("not found\n\n 2 en-us\n x en-us --/M Name gmw/en\n", nothing).empty());
    EXPECT_TRUE(parseEspeakVoices(" 2 en-us --/M Name -w/etc/passwd\n", nothing).empty());
}

TEST(EspeakVoicesTest, languageTagsHaveTheirRegionInCapitals) {
    EXPECT_EQ(languageTag(u"en-us"_s), u"en-US"_s);
    EXPECT_EQ(languageTag(u"en"_s), u"en"_s);
    EXPECT_EQ(languageTag(u"en-gb-scotland"_s), u"en-GB-scotland"_s);
    EXPECT_EQ(languageTag(u"en-gb-x-rp"_s), u"en-GB-x-rp"_s);
    EXPECT_EQ(languageTag(u"en-029"_s), u"en-029"_s);
    EXPECT_EQ(languageTag(u""_s), u""_s);
}

}  // namespace
}  // namespace corvellan::test
