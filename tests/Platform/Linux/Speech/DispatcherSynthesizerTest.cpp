#include "Platform/Linux/Speech/DispatcherSynthesizer.h"

#include "Platform/Linux/Speech/DesktopSpeech.h"
#include "PrivateSpeechDaemon.h"
#include "SpeechFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

const QString longText =
    u"This is a rather long sentence that takes its time, so that it can be cut off in the middle"_s;

SpeechUtterance utterance(const QString& text) {
    return {.text = text, .voice = SpeechVoice{.language = u"en-US"_s}, .volume = 0.8};
}

class DispatcherSynthesizerTest : public SpeechFixture {
protected:
    std::unique_ptr<DispatcherSynthesizer> make() {
        return std::make_unique<DispatcherSynthesizer>(clock, ownSpeech, keepFailure(), SpeechDaemon::Start::never);
    }

    std::unique_ptr<DesktopSpeech> makeDesktop(std::string program = "espeak-ng") {
        return std::make_unique<DesktopSpeech>(clock, ownSpeech, keepFailure(), SpeechDaemon::Start::never,
                                               std::move(program));
    }
};

TEST_F(DispatcherSynthesizerTest, readsTheDaemonsEnglishVoicesWithoutTheirVariants) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    const auto synthesizer = make();
    const auto voices = prepare(*synthesizer);
    EXPECT_EQ(voices.americanEnglish, (SpeechVoice{.language = u"en-US"_s}));
    ASSERT_FALSE(voices.all.empty());
    for (const SpeechVoice& voice : voices.all) {
        EXPECT_TRUE(voice.language.startsWith(u"en")) << voice.language.toStdString();
        EXPECT_FALSE(voice.name.contains(u'+')) << voice.name.toStdString();
        EXPECT_EQ(voice.quality, VoiceQuality::standard);
    }
}

TEST_F(DispatcherSynthesizerTest, speaksInOrderAndTellsEachEnd) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    const auto listening = hearOutput();
    const auto synthesizer = make();
    prepare(*synthesizer);
    const auto begin = std::chrono::steady_clock::now();
    synthesizer->speak(utterance(u"Hello there."_s));
    synthesizer->speak(utterance(u"How are you?"_s));
    ASSERT_TRUE(spinUntil([&] { return heard.wasAudible(); }));
    EXPECT_TRUE(ownSpeech.isAudible(clock.now()));
    ASSERT_TRUE(waitForEnds(2));
    EXPECT_EQ(ended, 2);
    EXPECT_TRUE(spinUntil([&] { return !ownSpeech.isAudible(clock.now()); }));
    EXPECT_TRUE(failures().empty());
    // Neither takes the other's place: four words and the pause between them.
    EXPECT_GT(*heard.lastAudible() - *heard.firstAudible(), 1s);
    std::printf("two sentences took %.0f ms\n", milliseconds(*heard.lastAudible() - *heard.firstAudible()));
    tell("first sound", *heard.firstAudible() - begin);
}

TEST_F(DispatcherSynthesizerTest, isSilentSoonAfterStopAndEndsEveryUtterance) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    const auto listening = hearOutput();
    const auto synthesizer = make();
    prepare(*synthesizer);
    ASSERT_NO_FATAL_FAILURE(speakTwoLongOnes(*synthesizer, utterance(longText)));
    ASSERT_TRUE(waitForBlocks(heard, 10));

    const auto stop = std::chrono::steady_clock::now();
    synthesizer->stopSpeaking();
    ASSERT_NO_FATAL_FAILURE(expectSilenceSoonAfter(stop));

    expectToBeHeard(*synthesizer, utterance(u"Again."_s));
}

TEST_F(DispatcherSynthesizerTest, aDaemonThatDiesEndsEverythingAndTheNextOneSpeaks) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    const auto listening = hearOutput();
    const auto synthesizer = make();
    prepare(*synthesizer);
    // Both are with the daemon by then.
    ASSERT_NO_FATAL_FAILURE(speakTwoLongOnes(*synthesizer, utterance(longText)));
    ASSERT_TRUE(waitForBlocks(heard, 20));
    daemon.kill();
    ASSERT_TRUE(waitForEnds(2));
    daemon.start();
    synthesizer->speak(utterance(u"Again."_s));
    ASSERT_TRUE(waitForEnds(3));
    EXPECT_TRUE(failures().empty());
}

TEST_F(DispatcherSynthesizerTest, withoutADaemonAnUtteranceEndsAtOnce) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    daemon.kill();
    const auto synthesizer = make();
    const auto voices = prepare(*synthesizer);
    EXPECT_FALSE(voices.americanEnglish);
    synthesizer->speak(utterance(u"Hello."_s));
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_EQ(failures(), std::vector{SpeechFailure::noEngine});
}

TEST_F(DispatcherSynthesizerTest, aDaemonThatDoesNotAnswerIsNone) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    daemon.freeze();
    auto synthesizer = make();
    EXPECT_FALSE(prepare(*synthesizer).americanEnglish);
    synthesizer.reset();
}

TEST_F(DispatcherSynthesizerTest, aDaemonThatHangsLaterHoldsUpNobody) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    auto synthesizer = make();
    prepare(*synthesizer);
    daemon.freeze();
    synthesizer->speak(utterance(u"Hello."_s));
    synthesizer->stopSpeaking();
    // Its end waits for nothing either.
    synthesizer.reset();
    EXPECT_FALSE(ownSpeech.isAudible(clock.now() + 1s));
}

TEST_F(DispatcherSynthesizerTest, theDesktopsVoiceIsTheDaemonsWhereThereIsOne) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    const auto speech = makeDesktop("no-such-engine");
    EXPECT_TRUE(prepare(*speech).americanEnglish);
    EXPECT_TRUE(speech->usesDispatcher());
    speech->speak(utterance(u"Hello."_s));
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_TRUE(failures().empty());
}

TEST_F(DispatcherSynthesizerTest, theDesktopsVoiceIsEspeakWithoutADaemon) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    daemon.kill();
    const auto listening = hearOutput();
    const auto speech = makeDesktop();
    const auto voices = prepare(*speech);
    ASSERT_TRUE(voices.americanEnglish);
    EXPECT_FALSE(speech->usesDispatcher());
    speech->speak({.text = u"Hello."_s, .voice = voices.americanEnglish});
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_TRUE(heard.wasAudible());
}

TEST_F(DispatcherSynthesizerTest, aDaemonThatIsGoneForGoodIsLeftForEspeak) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    const auto listening = hearOutput();
    const auto speech = makeDesktop();
    prepare(*speech);
    daemon.kill();
    speech->speak(utterance(u"Lost."_s));
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_FALSE(speech->usesDispatcher());
    EXPECT_TRUE(failures().empty()) << "there is another engine yet";
    speech->speak(utterance(u"Hello."_s));
    ASSERT_TRUE(waitForEnds(2));
    EXPECT_TRUE(heard.wasAudible());
}

TEST_F(DispatcherSynthesizerTest, withNeitherAnUtteranceEndsAtOnceAndTheUserIsTold) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    daemon.kill();
    const auto speech = makeDesktop("no-such-engine");
    EXPECT_FALSE(prepare(*speech).americanEnglish);
    speech->speak({.text = u"Hello."_s});
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_EQ(failures(), std::vector{SpeechFailure::noEngine});
}

}  // namespace
}  // namespace corvellan::test
