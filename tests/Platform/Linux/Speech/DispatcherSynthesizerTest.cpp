#include "Platform/Linux/Speech/DispatcherSynthesizer.h"

#include "Platform/Linux/Speech/DesktopSpeech.h"
#include "PrivateSpeechDaemon.h"
#include "SpeechFixture.h"
#include "Support/ManualClock.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

const QString longText =
    u"This is a rather long sentence that takes its time, so that it can be cut off in the middle"_s;

SpeechUtterance utterance(const QString& text) {
    return {.text = text, .voice = SpeechVoice{.language = u"en-US"_s}, .volume = 0.8};
}

/// A clock whose hands the test moves, and which tells how often it was looked at.
class WatchedClock final : public Clock {
public:
    [[nodiscard]] MonotonicTime now() const override {
        ++m_looks;
        return m_hands.now();
    }
    [[nodiscard]] WallTime wallNow() const override { return m_hands.wallNow(); }
    TimerId callAt(MonotonicTime deadline, std::function<void()> due) override {
        return m_hands.callAt(deadline, std::move(due));
    }
    void cancel(TimerId timer) override { m_hands.cancel(timer); }

    void advance(std::chrono::nanoseconds step) { m_hands.advance(step); }
    [[nodiscard]] int looks() const { return m_looks; }
    [[nodiscard]] std::optional<MonotonicTime> nextDeadline() const { return m_hands.nextDeadline(); }

private:
    ManualClock m_hands;
    mutable std::atomic<int> m_looks = 0;
};

class DispatcherSynthesizerTest : public SpeechFixture {
protected:
    std::unique_ptr<DispatcherSynthesizer> make() { return make(clock); }
    std::unique_ptr<DispatcherSynthesizer> make(Clock& other) {
        return std::make_unique<DispatcherSynthesizer>(other, ownSpeech, keepFailure(), SpeechDaemon::Start::never);
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
    EXPECT_EQ(voices.engine, u"Speech Dispatcher"_s);
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
    EXPECT_EQ(voices.engine, QString{});
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

TEST_F(DispatcherSynthesizerTest, aMessageThatNeverEndsIsGivenUpInItsTime) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    WatchedClock hands;
    const auto synthesizer = make(hands);
    prepare(*synthesizer);
    // The daemon's module waits for the sound server from here on.
    pulse.freeze();
    synthesizer->speak(utterance(longText));
    const auto watch = [&](int times) {
        return spinUntil([&, enough = hands.looks() + times] { return hands.looks() >= enough; });
    };
    // Handing over and the begin look too.
    ASSERT_TRUE(watch(6));
    EXPECT_TRUE(ownSpeech.isAudible(hands.now()));
    hands.advance(14s + 250ms * longText.size());
    ASSERT_TRUE(watch(3));
    EXPECT_EQ(ended, 0) << "a slow voice needs that long";

    ASSERT_TRUE(spinUntil([&] {
        hands.advance(1s);
        return ended >= 1;
    }));
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(failures(), std::vector{SpeechFailure::noSound});
    EXPECT_FALSE(ownSpeech.isAudible(hands.now() + 1s));
}

TEST_F(DispatcherSynthesizerTest, aDaemonThatNoLongerAnswersIsGivenUpInItsTime) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    WatchedClock hands;
    const auto synthesizer = make(hands);
    prepare(*synthesizer);
    daemon.freeze();
    synthesizer->speak(utterance(u"Hello."_s));
    synthesizer->speak(utterance(u"How are you?"_s));
    ASSERT_TRUE(spinUntil([&] { return hands.nextDeadline().has_value(); })) << "it is waited for";
    hands.advance(4s);
    EXPECT_EQ(ended, 0);
    ASSERT_TRUE(spinUntil([&] {
        hands.advance(1s);
        return ended >= 2;
    }));
    EXPECT_EQ(ended, 2);
    EXPECT_EQ(failures(), (std::vector{SpeechFailure::noEngine, SpeechFailure::noEngine}));
    EXPECT_FALSE(ownSpeech.isAudible(hands.now() + 1s));
}

TEST_F(DispatcherSynthesizerTest, aDaemonThatNeverTellsItsVoicesIsGivenUpInItsTime) {
    PrivatePulse pulse;
    PrivateSpeechDaemon daemon;
    WatchedClock hands;
    std::atomic<bool> isRead = false;
    SpeechSynthesizer::Voices voices;
    const auto synthesizer = make(hands);
    synthesizer->setOnUtteranceEnded([this] { ++ended; });
    synthesizer->speak(utterance(u"Hello."_s));
    ASSERT_TRUE(spinUntil([&] { return ended == 1; }));
    daemon.freeze();
    synthesizer->readVoices([&](SpeechSynthesizer::Voices read) {
        voices = std::move(read);
        isRead = true;
    });
    ASSERT_TRUE(spinUntil([&] { return hands.nextDeadline().has_value(); })) << "it is waited for";
    hands.advance(11s);
    EXPECT_FALSE(isRead);
    hands.advance(1s);
    ASSERT_TRUE(spinUntil([&] { return isRead.load(); }));
    EXPECT_TRUE(voices.all.empty());
    EXPECT_TRUE(voices.engine.isEmpty());
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
    EXPECT_EQ(prepare(*speech).engine, u"Speech Dispatcher"_s);
    daemon.kill();
    speech->speak(utterance(u"Lost."_s));
    ASSERT_TRUE(waitForEnds(1));
    EXPECT_FALSE(speech->usesDispatcher());
    EXPECT_EQ(prepare(*speech).engine, u"espeak-ng"_s);
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
