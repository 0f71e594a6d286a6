#include "Services/Speech/TtsService.h"

#include <gtest/gtest.h>

#include <thread>

#include "Support/FakeSpeechSynthesizer.h"
#include "Support/LogCapture.h"
#include "Support/TestLoop.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

class TtsServiceTest : public testing::Test {
protected:
    TtsServiceTest() {
        tts.setOnPlayingChanged([this](bool isPlaying) { changes.push_back(isPlaying); });
    }

    /// As the system does: from a thread of its own.
    void endUtterance() {
        std::jthread{[this] { synthesizer.endUtterance(); }}.join();
        settle();
    }

    FakeSpeechSynthesizer synthesizer;
    std::vector<bool> changes;
    TtsService tts{mainExecutor(), synthesizer};

    /// Has the voices read before the test begins, as a session does.
    void prepare() {
        tts.prepare();
        settle();
    }
};

using Changes = std::vector<bool>;

TEST_F(TtsServiceTest, speaksAWholeSentenceAndKeepsWhatFollows) {
    prepare();
    tts.feedToken(u"Hello"_s);
    EXPECT_TRUE(synthesizer.texts.isEmpty());
    EXPECT_EQ(tts.buffer(), u"Hello"_s);
    tts.feedToken(u" there. What"_s);
    EXPECT_EQ(synthesizer.texts, QStringList{u"Hello there."_s});
    EXPECT_EQ(tts.buffer(), u" What"_s);
}

TEST_F(TtsServiceTest, cutsAnAbbreviationBeforeASpace) {
    prepare();
    tts.feedToken(u"Ask Dr. Weber"_s);
    EXPECT_EQ(synthesizer.texts, QStringList{u"Ask Dr."_s});
    EXPECT_EQ(tts.buffer(), u" Weber"_s);
}

TEST_F(TtsServiceTest, speaksAnAbbreviationWithInnerPointsAsOne) {
    prepare();
    tts.feedToken(u"e.g."_s);
    EXPECT_EQ(synthesizer.texts, QStringList{u"e.g."_s});
}

TEST_F(TtsServiceTest, cutsAtACommaOnlyBehindFortyCharacters) {
    prepare();
    const QString text39(39, u'a');
    tts.feedToken(text39 + u","_s);
    EXPECT_TRUE(synthesizer.texts.isEmpty());
    tts.stop();
    tts.feedToken(text39 + u"a,"_s);
    EXPECT_EQ(synthesizer.texts, QStringList{text39 + u"a,"_s});
}

TEST_F(TtsServiceTest, cutsAtTheSecondOfTwoExclamationMarks) {
    prepare();
    tts.feedToken(u"No!! And"_s);
    EXPECT_EQ(synthesizer.texts, QStringList{u"No!!"_s});
}

TEST_F(TtsServiceTest, speaksAPointAlone) {
    prepare();
    tts.feedToken(u" . "_s);
    EXPECT_EQ(synthesizer.texts, QStringList{u"."_s});
}

TEST_F(TtsServiceTest, flushSpeaksARestWithoutAStop) {
    prepare();
    tts.feedToken(u" so be it \n"_s);
    tts.flush();
    EXPECT_EQ(synthesizer.texts, QStringList{u"so be it"_s});
    EXPECT_TRUE(tts.buffer().isEmpty());
}

TEST_F(TtsServiceTest, flushOfWhiteSpaceSpeaksNothingAndEmptiesTheBuffer) {
    prepare();
    tts.feedToken(u" \n\t"_s);
    tts.flush();
    EXPECT_TRUE(synthesizer.texts.isEmpty());
    EXPECT_TRUE(tts.buffer().isEmpty());
    EXPECT_EQ(changes, Changes{});
}

TEST_F(TtsServiceTest, asksForTheDefaultRateAndPitchAndEightTenthsOfTheVolume) {
    prepare();
    tts.feedToken(u"Hello."_s);
    ASSERT_EQ(synthesizer.utterances.size(), 1U);
    const SpeechUtterance& utterance = synthesizer.utterances.front();
    EXPECT_EQ(utterance.rate, 1.0);
    EXPECT_EQ(utterance.pitchMultiplier, 1.0);
    EXPECT_EQ(utterance.volume, 0.8);
}

TEST_F(TtsServiceTest, tellsThatItPlaysBeforeTheUtteranceIsHandedOver) {
    prepare();
    Changes before;
    int pendingBefore = 0;
    synthesizer.onSpeak = [&] {
        before = changes;
        pendingBefore = tts.pendingCount();
    };
    tts.feedToken(u"Hello."_s);
    EXPECT_EQ(before, Changes{true});
    EXPECT_EQ(pendingBefore, 1);
    EXPECT_TRUE(tts.isPlaying());
}

TEST_F(TtsServiceTest, stopWhenSilentChangesNothing) {
    tts.feedToken(u"Hel"_s);
    tts.stop();
    EXPECT_EQ(changes, Changes{});
    EXPECT_EQ(synthesizer.stops, 1);
    EXPECT_TRUE(tts.buffer().isEmpty());
}

TEST_F(TtsServiceTest, stopWhileSpeakingTellsOnceAndLateCancelsKeepTheCountAtZero) {
    prepare();
    tts.feedToken(u"One. Two. Thr"_s);
    EXPECT_EQ(tts.pendingCount(), 2);
    tts.stop();
    EXPECT_EQ(changes, (Changes{true, false}));
    EXPECT_EQ(tts.pendingCount(), 0);
    EXPECT_TRUE(tts.buffer().isEmpty());
    endUtterance();
    endUtterance();
    EXPECT_EQ(changes, (Changes{true, false}));
    EXPECT_EQ(tts.pendingCount(), 0);
}

TEST_F(TtsServiceTest, twoSentencesInARowAreOneStretchOfSpeech) {
    prepare();
    tts.feedToken(u"One. Two."_s);
    EXPECT_EQ(changes, Changes{true});
    endUtterance();
    EXPECT_EQ(changes, Changes{true});
    endUtterance();
    EXPECT_EQ(changes, (Changes{true, false}));
}

TEST_F(TtsServiceTest, aQueueThatRunsDryTellsBetweenTheSentences) {
    prepare();
    tts.feedToken(u"One."_s);
    endUtterance();
    tts.feedToken(u"Two."_s);
    EXPECT_EQ(changes, (Changes{true, false, true}));
}

TEST_F(TtsServiceTest, aSentenceRightAfterStopIsCutShortByTheOldOnesLateCancels) {
    prepare();
    tts.feedToken(u"One. Two."_s);
    tts.stop();
    tts.feedToken(u"Three."_s);
    EXPECT_EQ(tts.pendingCount(), 1);
    endUtterance();
    EXPECT_EQ(changes, (Changes{true, false, true, false}));
    EXPECT_EQ(tts.pendingCount(), 0);
    endUtterance();
    endUtterance();
    EXPECT_EQ(changes, (Changes{true, false, true, false}));
}

TEST_F(TtsServiceTest, whatASynthesiserTellsOnItsThreadArrivesOnTheMainOne) {
    prepare();
    tts.feedToken(u"One."_s);
    std::jthread{[this] { synthesizer.endUtterance(); }}.join();
    EXPECT_TRUE(tts.isPlaying()) << "not before the main thread's next turn";
    settle();
    EXPECT_FALSE(tts.isPlaying());
}

TEST_F(TtsServiceTest, anEndAfterTheServicesOwnIsForgotten) {
    auto other = std::make_unique<TtsService>(mainExecutor(), synthesizer);
    int told = 0;
    other->setOnPlayingChanged([&told](bool) { ++told; });
    other->prepare();
    settle();
    other->feedToken(u"One."_s);
    synthesizer.endUtterance();
    other.reset();
    settle();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(synthesizer.stops, 1) << "and nobody goes on speaking for it";
}

TEST_F(TtsServiceTest, everySentenceOfTenThousandTokensIsSpokenOnceAndInOrder) {
    prepare();
    QStringList expected;
    int unended = 0;
    for (int i = 0; i < 2500; ++i) {
        for (const QString& token : {u"This is "_s, u"sentence "_s, QString::number(i), u". "_s})
            tts.feedToken(token);
        expected.append(u"This is sentence %1."_s.arg(i));
        // The voice is slower than the tokens.
        if (++unended % 3 == 0)
            synthesizer.endUtterance();
    }
    tts.flush();
    settle();
    EXPECT_EQ(synthesizer.texts, expected);
    EXPECT_EQ(tts.pendingCount(), 2500 - 833);
    EXPECT_EQ(changes, Changes{true});
    for (int i = 0; i < 2500 - 833; ++i)
        synthesizer.endUtterance();
    settle();
    EXPECT_EQ(changes, (Changes{true, false}));
}

}  // namespace
}  // namespace corvellan::test
