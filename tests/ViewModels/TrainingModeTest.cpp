#include <gtest/gtest.h>

#include <algorithm>

#include "Support/SessionFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

CoachingPayload tip() {
    return {.message = u"Ask more"_s, .coachingType = CoachingType::whisper};
}

TEST(TrainingModeTest, speechMutesTheMicrophoneAndMovesTheStage) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.session().setAudioLevel(1);
    fixture.factory.tts.play(true);
    settle();
    EXPECT_TRUE(fixture.session().isTtsPlaying());
    EXPECT_TRUE(fixture.audio->muted);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::counterpartSpeaking);
    EXPECT_EQ(fixture.session().audioLevel(), 0);
    fixture.factory.tts.play(false);
    settle();
    EXPECT_FALSE(fixture.audio->muted);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
    EXPECT_EQ(fixture.session().statusText(), u"Listening..."_s);
}

TEST(TrainingModeTest, theEndOfSpeechAfterTheSessionOnlyUnmutes) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.factory.tts.play(true);
    settle();
    fixture.session().stopSession();
    settle();
    fixture.session().setStatusText(u"Elsewhere"_s);
    fixture.session().setTrainStage(TrainStage::coaching);
    fixture.factory.tts.play(false);
    settle();
    EXPECT_FALSE(fixture.audio->muted);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::coaching);
    EXPECT_EQ(fixture.session().statusText(), u"Elsewhere"_s);
}

TEST(TrainingModeTest, interruptingStopsSpeechAndUnmutesShortlyAfter) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.factory.tts.play(true);
    settle();
    fixture.log.clear();
    fixture.session().interruptTts();
    EXPECT_EQ(fixture.log, (CallLog{"tts.stop"}));
    EXPECT_FALSE(fixture.session().isTtsPlaying());
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
    settle();
    EXPECT_FALSE(fixture.audio->muted);
    fixture.audio->deliver("next");
    settle();
    EXPECT_EQ(fixture.stt->received.back(), "next");
}

TEST(TrainingModeTest, withRepliesMutedNothingIsSpokenAndTheStageReturnsAtTheReplysEnd) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.session().toggleTtsMute();
    settle();
    fixture.log.clear();
    fixture.session().handleServerMessage({ServerMsg::CounterpartToken{u"Hello"_s}});
    EXPECT_EQ(fixture.session().counterpartStreamingText(), u"Hello"_s);
    fixture.session().handleServerMessage({ServerMsg::CounterpartDone{1}});
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
    EXPECT_EQ(fixture.session().statusText(), u"Listening..."_s);
    EXPECT_TRUE(fixture.factory.tts.fed.isEmpty());
    settle();
    EXPECT_TRUE(fixture.log.empty());
    EXPECT_FALSE(fixture.audio->muted);
    fixture.audio->deliver("still heard");
    settle();
    EXPECT_EQ(fixture.stt->received.back(), "still heard");
    EXPECT_EQ(fixture.session().transcriptLines().lines().back().text, u"Hello"_s);
    fixture.session().toggleTtsMute();
    EXPECT_FALSE(fixture.session().isTtsMuted());
    EXPECT_TRUE(fixture.factory.tts.fed.isEmpty());
}

TEST(TrainingModeTest, anUtteranceMovesTheStageToWaiting) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.stt->deliverFinal(u"What is your budget?"_s);
    settle();
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::waitingLLM);
    EXPECT_EQ(fixture.session().statusText(), u"Waiting for response..."_s);
}

TEST(TrainingModeTest, aTipMovesTheStageForTwoSeconds) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.session().handleServerMessage({tip()});
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::coaching);
    settleAfter(fixture.clock, 1999ms);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::coaching);
    settleAfter(fixture.clock, 1ms);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
    EXPECT_EQ(fixture.session().statusText(), u"Listening..."_s);
}

TEST(TrainingModeTest, ofTwoTipsWithinTwoSecondsOnlyTheSecondsTimerStands) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.session().handleServerMessage({tip()});
    settleAfter(fixture.clock, 1500ms);
    fixture.session().handleServerMessage({tip()});
    settleAfter(fixture.clock, 1500ms);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::coaching);
    settleAfter(fixture.clock, 500ms);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
}

TEST(TrainingModeTest, aTipsTimerEndsWithTheSession) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.session().handleServerMessage({tip()});
    settle();
    fixture.session().stopSession();
    fixture.session().setTrainStage(TrainStage::coaching);
    settleAfter(fixture.clock, 5s);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::coaching);
    EXPECT_EQ(fixture.session().statusText(), u"Ready"_s);
}

TEST(TrainingModeTest, aStoppedSessionIsNoTrainingAnyMore) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.session().stopSession();
    settle();
    fixture.session().handleServerMessage({tip()});
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
}

TEST(TrainingModeTest, aTipsTimerLeavesAnotherStageAlone) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.session().handleServerMessage({tip()});
    fixture.session().setTrainStage(TrainStage::waitingLLM);
    settleAfter(fixture.clock, 5s);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::waitingLLM);
    EXPECT_EQ(fixture.session().statusText(), u"Coaching"_s);
}

TEST(TrainingModeTest, inALiveCallATipLeavesTheStageAlone) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.session().handleServerMessage({tip()});
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
    EXPECT_EQ(fixture.session().statusText(), u"Coaching"_s);
}

TEST(TrainingModeTest, speechIsPreparedBeforeATrainingAndNotBeforeACall) {
    SessionFixture fixture;
    fixture.goLive();
    EXPECT_EQ(fixture.factory.tts.preparations, 0);
    SessionFixture training;
    training.goLive({.simMode = true});
    EXPECT_EQ(training.factory.tts.preparations, 1);
}

TEST(TrainingModeTest, noneOfWhatTheMicrophoneHearsWhileTheVoiceSpeaksIsTranscribed) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.audio->deliver("before");
    settle();
    fixture.factory.tts.play(true);
    settle();
    fixture.audio->deliver("the voice itself");
    settle();
    fixture.factory.tts.play(false);
    settle();
    fixture.audio->deliver("after");
    settle();
    EXPECT_EQ(fixture.stt->received, (std::vector<QByteArray>{"before", "after"}));
}

TEST(TrainingModeTest, aBlankUtteranceLeavesTheStageAlone) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    const QString status = fixture.session().statusText();
    fixture.stt->deliverFinal(u" \t"_s);
    settle();
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
    EXPECT_EQ(fixture.session().statusText(), status);
}

TEST(TrainingModeTest, aReplysPieceMovesTheStageAndIsFedToTheVoice) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.session().handleServerMessage({ServerMsg::CounterpartToken{u"Well, "_s}});
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::counterpartSpeaking);
    EXPECT_EQ(fixture.factory.tts.fed, QStringList{u"Well, "_s});
    fixture.log.clear();
    fixture.session().handleServerMessage({ServerMsg::CounterpartDone{1}});
    EXPECT_EQ(fixture.log, (CallLog{"tts.flush"}));
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::counterpartSpeaking) << "until the voice has ended";
}

TEST(TrainingModeTest, speechSwitchedOffCutsOffWhatIsSpoken) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.factory.tts.play(true);
    settle();
    fixture.log.clear();
    fixture.session().toggleTtsMute();
    EXPECT_EQ(fixture.log, (CallLog{"tts.stop"}));
    EXPECT_FALSE(fixture.session().isTtsPlaying());
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
    settle();
    EXPECT_FALSE(fixture.audio->muted);
}

TEST(TrainingModeTest, speechSwitchedOnAgainDuringAReplySpeaksOnlyWhatIsStillToCome) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.session().toggleTtsMute();
    fixture.session().handleServerMessage({ServerMsg::CounterpartToken{u"Skipped. "_s}});
    fixture.log.clear();
    fixture.session().toggleTtsMute();
    EXPECT_TRUE(fixture.log.empty());
    EXPECT_TRUE(fixture.factory.tts.fed.isEmpty());
    fixture.session().handleServerMessage({ServerMsg::CounterpartToken{u"Spoken."_s}});
    EXPECT_EQ(fixture.factory.tts.fed, QStringList{u"Spoken."_s});
    fixture.session().handleServerMessage({ServerMsg::CounterpartDone{2}});
    EXPECT_EQ(fixture.session().transcriptLines().lines().back().text, u"Skipped. Spoken."_s);
}

TEST(TrainingModeTest, speechStaysSwitchedOffInTheNextSession) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.session().toggleTtsMute();
    fixture.session().stopSession();
    settle();
    EXPECT_TRUE(fixture.session().isTtsMuted());
}

TEST(TrainingModeTest, aMutedReplysEndInALiveCallLeavesTheStageAlone) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.session().toggleTtsMute();
    fixture.session().setStatusText(u"Elsewhere"_s);
    fixture.session().handleServerMessage({ServerMsg::CounterpartToken{u"Hello"_s}});
    fixture.session().handleServerMessage({ServerMsg::CounterpartDone{1}});
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::counterpartSpeaking);
    EXPECT_EQ(fixture.session().statusText(), u"Elsewhere"_s);
}

TEST(TrainingModeTest, aTipDuringSpeechAndItsTimerMoveTheStageWhileTheVoiceStillSpeaks) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.factory.tts.play(true);
    settle();
    fixture.session().handleServerMessage({tip()});
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::coaching);
    settleAfter(fixture.clock, 2s);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
    EXPECT_TRUE(fixture.session().isTtsPlaying());
    EXPECT_TRUE(fixture.audio->muted);
}

TEST(TrainingModeTest, aStoppedSessionStopsSpeech) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    fixture.factory.tts.play(true);
    settle();
    fixture.log.clear();
    fixture.session().stopSession();
    EXPECT_NE(std::ranges::find(fixture.log, "tts.stop"), fixture.log.end());
    EXPECT_FALSE(fixture.session().isTtsPlaying());
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
}

}  // namespace
}  // namespace corvellan::test
