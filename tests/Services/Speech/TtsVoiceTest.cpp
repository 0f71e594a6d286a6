#include <gtest/gtest.h>

#include "Services/Speech/TtsService.h"
#include "Support/FakeSpeechSynthesizer.h"
#include "Support/LogCapture.h"
#include "Support/TestLoop.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

SpeechVoice voice(const QString& name, const QString& language, VoiceQuality quality) {
    return {.language = language, .quality = quality, .name = name};
}

/// The voice that speaks, and what the log says of it.
struct Choice {
    std::optional<SpeechVoice> voice;
    QStringList log;
};

Choice chooseFrom(SpeechSynthesizer::Voices voices) {
    LogCapture log{u"TTS"_s};
    FakeSpeechSynthesizer synthesizer;
    synthesizer.voices = std::move(voices);
    TtsService tts{mainExecutor(), synthesizer};
    tts.feedToken(u"Hello."_s);
    settle();
    return {.voice = synthesizer.utterances.at(0).voice, .log = log.infos()};
}

const auto ava = voice(u"Ava"_s, u"en-US"_s, VoiceQuality::premium);
const auto zoe = voice(u"Zoe"_s, u"en-US"_s, VoiceQuality::enhanced);
const auto kate = voice(u"Kate"_s, u"en-GB"_s, VoiceQuality::premium);
const auto lee = voice(u"Lee"_s, u"en-AU"_s, VoiceQuality::enhanced);
const auto anna = voice(u"Anna"_s, u"de-DE"_s, VoiceQuality::premium);
const auto plain = voice(u"Fred"_s, u"en-US"_s, VoiceQuality::standard);

TEST(TtsVoiceTest, aPremiumAmericanVoiceComesFirst) {
    const auto [chosen, log] = chooseFrom({.all = {anna, kate, lee, plain, zoe, ava}, .americanEnglish = plain});
    EXPECT_EQ(chosen, ava);
    EXPECT_EQ(log, QStringList{u"TTS voice: Ava (premium)"_s});
}

TEST(TtsVoiceTest, anEnhancedAmericanVoiceBeatsAPremiumOneOfAnotherEnglish) {
    const auto [chosen, log] = chooseFrom({.all = {anna, kate, zoe, plain}, .americanEnglish = plain});
    EXPECT_EQ(chosen, zoe);
    EXPECT_EQ(log, QStringList{u"TTS voice: Zoe (enhanced)"_s});
}

TEST(TtsVoiceTest, aPremiumVoiceOfAnyEnglishComesThird) {
    const auto [chosen, log] = chooseFrom({.all = {anna, lee, plain, kate}, .americanEnglish = plain});
    EXPECT_EQ(chosen, kate);
    EXPECT_EQ(log, QStringList{u"TTS voice: Kate (premium, en-GB)"_s});
}

TEST(TtsVoiceTest, anEnhancedVoiceOfAnyEnglishComesFourth) {
    const auto [chosen, log] = chooseFrom({.all = {anna, plain, lee}, .americanEnglish = plain});
    EXPECT_EQ(chosen, lee);
    EXPECT_EQ(log, QStringList{u"TTS voice: Lee (enhanced, en-AU)"_s});
}

TEST(TtsVoiceTest, theSystemsAmericanVoiceSpeaksWhereNoneIsBetter) {
    const auto [chosen, log] = chooseFrom({.all = {anna, plain}, .americanEnglish = plain});
    EXPECT_EQ(chosen, plain);
    EXPECT_EQ(log, QStringList{u"TTS voice: system default (no premium/enhanced voices installed)"_s});
}

TEST(TtsVoiceTest, withoutAnyVoiceTheUtteranceIsLeftToTheSystem) {
    const auto [chosen, log] = chooseFrom({});
    EXPECT_EQ(chosen, std::nullopt);
    EXPECT_EQ(log, QStringList{u"TTS voice: system default (no premium/enhanced voices installed)"_s});
}

TEST(TtsVoiceTest, amongEqualsThePlatformsOrderDecides) {
    const auto first = voice(u"Tom"_s, u"en-US"_s, VoiceQuality::enhanced);
    EXPECT_EQ(chooseFrom({.all = {first, zoe}}).voice, first);
}

TEST(TtsVoiceTest, isChosenOnceAndKept) {
    FakeSpeechSynthesizer synthesizer;
    TtsService tts{mainExecutor(), synthesizer};
    LogCapture log{u"TTS"_s};
    EXPECT_EQ(synthesizer.readings, 0) << "not before it is needed";
    tts.feedToken(u"One."_s);
    settle();
    synthesizer.voices = {.all = {ava}};
    tts.feedToken(u"Two."_s);
    settle();
    EXPECT_EQ(synthesizer.readings, 1);
    EXPECT_EQ(synthesizer.utterances.at(1).voice, std::nullopt);
    EXPECT_EQ(log.infos().size(), 1);
}

TEST(TtsVoiceTest, sentencesWaitForItInTheirOrder) {
    FakeSpeechSynthesizer synthesizer;
    synthesizer.answersAtOnce = false;
    synthesizer.voices = {.all = {ava}};
    TtsService tts{mainExecutor(), synthesizer};
    tts.feedToken(u"One. Two. Thr"_s);
    settle();
    EXPECT_TRUE(tts.isPlaying());
    EXPECT_EQ(tts.pendingCount(), 2);
    EXPECT_TRUE(synthesizer.texts.isEmpty());
    synthesizer.answer();
    settle();
    tts.feedToken(u"ee."_s);
    EXPECT_EQ(synthesizer.texts, (QStringList{u"One."_s, u"Two."_s, u"Three."_s}));
    EXPECT_EQ(synthesizer.utterances.at(0).voice, ava);
}

TEST(TtsVoiceTest, sentencesThatWaitForItAreForgottenAtStop) {
    FakeSpeechSynthesizer synthesizer;
    synthesizer.answersAtOnce = false;
    TtsService tts{mainExecutor(), synthesizer};
    tts.feedToken(u"One. Two."_s);
    tts.stop();
    tts.feedToken(u"Three."_s);
    synthesizer.answer();
    settle();
    EXPECT_EQ(synthesizer.texts, QStringList{u"Three."_s});
    EXPECT_EQ(tts.pendingCount(), 1);
}

}  // namespace
}  // namespace corvellan::test
