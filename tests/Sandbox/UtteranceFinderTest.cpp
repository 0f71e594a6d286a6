#include "Sandbox/UtteranceFinder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "GeneratedAudio.h"

namespace corvellan::test {

namespace {

using sandbox::SpeechEvent;
using sandbox::SpeechStarted;
using sandbox::TurnDetection;
using sandbox::Utterance;
using sandbox::UtteranceFinder;

constexpr TurnDetection asClientsAsk{.threshold = 0.6, .silence = std::chrono::milliseconds{2000}};
constexpr std::int64_t second = GeneratedAudio::sampleRateHertz;

/// Feeds the audio in pieces and keeps the finished utterances.
std::vector<Utterance> utterances(UtteranceFinder& finder, const GeneratedAudio& audio, std::size_t piece = 2400) {
    std::vector<Utterance> found;
    std::span<const std::int16_t> rest{audio.samples()};
    while (!rest.empty()) {
        const auto next = rest.first(std::min(piece, rest.size()));
        rest = rest.subspan(next.size());
        for (const auto& event : finder.feed(next))
            if (const auto* utterance = std::get_if<Utterance>(&event))
                found.push_back(*utterance);
    }
    return found;
}

std::vector<Utterance> utterances(const GeneratedAudio& audio, TurnDetection detection = asClientsAsk) {
    UtteranceFinder finder{detection};
    return utterances(finder, audio);
}

}  // namespace

TEST(UtteranceFinderTest, findsTheFirstAndTheLastSampleOfSpeech) {
    const auto found = utterances(GeneratedAudio{}.silence(1).tone(1.5).silence(3).tone(0.8).silence(2));
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].firstSample, second);
    EXPECT_EQ(found[0].endSample, second * 5 / 2);
    EXPECT_DOUBLE_EQ(found[0].seconds(), 1.5);
    EXPECT_EQ(found[1].firstSample, second * 11 / 2);
    EXPECT_DOUBLE_EQ(found[1].seconds(), 0.8);
}

TEST(UtteranceFinderTest, findsTheSameHoweverTheAudioIsCut) {
    const auto audio = GeneratedAudio{}.silence(0.333).tone(1.2).silence(2.5).tone(0.7).silence(2.1);
    UtteranceFinder whole{asClientsAsk};
    const auto expected = utterances(whole, audio, audio.samples().size());
    ASSERT_EQ(expected.size(), 2U);
    for (const std::size_t piece : {1U, 7U, 240U, 241U, 4096U}) {
        UtteranceFinder finder{asClientsAsk};
        const auto found = utterances(finder, audio, piece);
        ASSERT_EQ(found.size(), 2U) << piece;
        for (std::size_t i = 0; i < found.size(); ++i) {
            EXPECT_EQ(found[i].firstSample, expected[i].firstSample) << piece;
            EXPECT_EQ(found[i].endSample, expected[i].endSample) << piece;
            EXPECT_EQ(found[i].pcm, expected[i].pcm) << piece;
        }
    }
}

TEST(UtteranceFinderTest, keepsAnUtteranceTogetherOverAShorterPause) {
    const auto found = utterances(GeneratedAudio{}.tone(1).silence(1.98).tone(1).silence(2));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_DOUBLE_EQ(found[0].seconds(), 3.98);
}

TEST(UtteranceFinderTest, endsAnUtteranceAfterExactlyTheSilenceAskedFor) {
    UtteranceFinder finder{asClientsAsk};
    EXPECT_TRUE(utterances(finder, GeneratedAudio{}.tone(1).silence(1.99)).empty());
    EXPECT_TRUE(finder.isSpeaking());
    EXPECT_EQ(utterances(finder, GeneratedAudio{}.silence(0.01)).size(), 1U);
    EXPECT_FALSE(finder.isSpeaking());
}

class SilenceTime : public testing::TestWithParam<int> {};

TEST_P(SilenceTime, isAsTheClientAsks) {
    const std::chrono::milliseconds silence{GetParam()};
    const double seconds = std::chrono::duration<double>(silence).count();
    const TurnDetection detection{.threshold = 0.6, .silence = silence};
    EXPECT_EQ(utterances(GeneratedAudio{}.tone(0.5).silence(seconds - 0.02).tone(0.5).silence(4), detection).size(),
              1U);
    EXPECT_EQ(utterances(GeneratedAudio{}.tone(0.5).silence(seconds + 0.02).tone(0.5).silence(4), detection).size(),
              2U);
}

INSTANTIATE_TEST_SUITE_P(Milliseconds, SilenceTime, testing::Values(200, 500, 1000, 2000, 3000));

TEST(UtteranceFinderTest, tellsTheStartBeforeTheEnd) {
    UtteranceFinder finder{asClientsAsk};
    const auto audio = GeneratedAudio{}.silence(0.5).tone(0.1);
    const auto events = finder.feed(audio.samples());
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(std::get<SpeechStarted>(events[0]).firstSample, second / 2);
    EXPECT_DOUBLE_EQ(finder.secondsSpoken(), 0.1);
}

TEST(UtteranceFinderTest, hearsNoClick) {
    const auto found = utterances(GeneratedAudio{}.silence(1).tone(0.03, 0.9).silence(3));
    EXPECT_TRUE(found.empty());
}

TEST(UtteranceFinderTest, isNotKeptAliveByAClick) {
    const auto found = utterances(GeneratedAudio{}.tone(1).silence(1).tone(0.02, 0.9).silence(1.1));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_DOUBLE_EQ(found[0].seconds(), 1);
}

TEST(UtteranceFinderTest, hearsNoQuietVoiceWithAHighThreshold) {
    // -40 dBFS: above the level of threshold 0.4 (-42), below that of 0.6 (-38).
    const auto quiet = GeneratedAudio{}.silence(0.5).tone(1, 0.0141).silence(2.5);
    EXPECT_EQ(utterances(quiet, {.threshold = 0.4, .silence = asClientsAsk.silence}).size(), 1U);
    EXPECT_TRUE(utterances(quiet).empty());
}

TEST(UtteranceFinderTest, findsSpeechInQuietNoise) {
    const auto found = utterances(GeneratedAudio{}.silence(1).tone(2).silence(3).addNoise(0.003));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].firstSample, second);
    EXPECT_DOUBLE_EQ(found[0].seconds(), 2);
}

TEST(UtteranceFinderTest, getsUsedToAHummingRoom) {
    // Louder than the threshold's level: at first it is taken for speech, but not for ever.
    UtteranceFinder finder{asClientsAsk};
    std::ignore = utterances(finder, GeneratedAudio{}.noise(10, 0.02));
    EXPECT_FALSE(finder.isSpeaking());
    const std::int64_t before = finder.samplesFed();
    const auto found = utterances(finder, GeneratedAudio{}.silence(1).tone(2, 0.5).silence(3).addNoise(0.02));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].firstSample - before, second);
    EXPECT_DOUBLE_EQ(found[0].seconds(), 2);
}

TEST(UtteranceFinderTest, handsTheSpeechOutWithALittleRoundIt) {
    const auto found = utterances(GeneratedAudio{}.silence(1).tone(1).silence(2));
    ASSERT_EQ(found.size(), 1U);
    const auto expected = GeneratedAudio{}.silence(0.2).tone(1).silence(0.2);
    EXPECT_EQ(found[0].pcm, expected.pcm());
}

TEST(UtteranceFinderTest, handsOutNoMoreThanThereIsBeforeTheFirstSample) {
    const auto found = utterances(GeneratedAudio{}.silence(0.05).tone(1).silence(2));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].pcm, GeneratedAudio{}.silence(0.05).tone(1).silence(0.2).pcm());
}

TEST(UtteranceFinderTest, cutsAnUtteranceThatNeverEnds) {
    UtteranceFinder finder{asClientsAsk};
    // Bursts, since a steady tone becomes the noise of the room.
    GeneratedAudio burst;
    burst.tone(0.8).silence(0.2);
    std::vector<Utterance> found;
    for (int i = 0; i < 121 && found.empty(); ++i)
        found = utterances(finder, burst);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_LE(found[0].seconds(), 120);
    EXPECT_GE(found[0].seconds(), 119);
}

TEST(UtteranceFinderTest, endsWhatIsUnderWayAtTheEndOfAFile) {
    UtteranceFinder finder{asClientsAsk};
    std::ignore = finder.feed(GeneratedAudio{}.tone(1).silence(0.3).samples());
    const auto events = finder.finish();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_DOUBLE_EQ(std::get<Utterance>(events[0]).seconds(), 1);
    EXPECT_TRUE(finder.finish().empty());
}

TEST(UtteranceFinderTest, takesANewSilenceWithinAnUtterance) {
    UtteranceFinder finder{asClientsAsk};
    EXPECT_TRUE(utterances(finder, GeneratedAudio{}.tone(1).silence(0.6)).empty());
    finder.setTurnDetection({.threshold = 0.6, .silence = std::chrono::milliseconds{500}});
    EXPECT_EQ(utterances(finder, GeneratedAudio{}.silence(0.01)).size(), 1U);
}

TEST(UtteranceFinderTest, findsNothingInSilence) {
    UtteranceFinder finder{asClientsAsk};
    EXPECT_TRUE(utterances(finder, GeneratedAudio{}.silence(30)).empty());
    EXPECT_EQ(finder.samplesFed(), 30 * second);
    EXPECT_EQ(finder.secondsSpoken(), 0);
}

}  // namespace corvellan::test
