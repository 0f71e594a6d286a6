#include <gtest/gtest.h>

#include "Support/SessionFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

QStringList texts(SessionFixture& fixture) {
    QStringList result;
    for (const auto& line : fixture.session().transcriptLines().lines())
        result.append(label(line.source) + u": "_s + line.text);
    return result;
}

TEST(TranscriptFlowTest, finishedUtterancesBecomeLinesAndMessagesOnTheirSides) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.stt->deliverFinal(u" Good morning "_s);
    settle();
    fixture.factory.systemStt.deliverFinal(u"Hello"_s);
    settle();
    EXPECT_EQ(texts(fixture), (QStringList{u"YOU:  Good morning "_s, u"THEM: Hello"_s}));
    const auto& sent = fixture.ws->sent;
    EXPECT_EQ(std::get<ClientMsg::Transcript>(sent.at(sent.size() - 2).value),
              (ClientMsg::Transcript{.source = AudioSourceTag::mic, .text = u" Good morning "_s}));
    EXPECT_EQ(std::get<ClientMsg::Transcript>(sent.back().value),
              (ClientMsg::Transcript{.source = AudioSourceTag::system, .text = u"Hello"_s}));
    EXPECT_TRUE(fixture.debugLines().contains(u"MIC_STT:  Good morning "_s));
    // The turn moves in training alone.
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::listening);
    EXPECT_EQ(fixture.session().statusText(), u"Listening..."_s);
}

TEST(TranscriptFlowTest, aFinalOfBlanksIsDroppedOnBothSides) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.stt->deliverFinal(u" \t "_s);
    fixture.factory.systemStt.deliverFinal(u"  "_s);
    settle();
    EXPECT_TRUE(texts(fixture).isEmpty());
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::Transcript>(), 0);
}

TEST(TranscriptFlowTest, aFinalOfNewlinesIsSentAndRecordedButDoesNotResetTheSilence) {
    SessionFixture fixture;
    fixture.goLive();
    settleAfter(fixture.clock, 100s);
    fixture.stt->deliverFinal(u"\n\n"_s);
    settle();
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::Transcript>(), 1);
    EXPECT_EQ(texts(fixture).size(), 1);
    settleAfter(fixture.clock, 21s);
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 1);
}

TEST(TranscriptFlowTest, threeCharactersLeaveTheSilenceAloneAndFourResetIt) {
    {
        SessionFixture fixture;
        fixture.goLive();
        settleAfter(fixture.clock, 100s);
        fixture.stt->deliverFinal(u" ok! "_s);
        settle();
        EXPECT_EQ(texts(fixture).size(), 1);
        settleAfter(fixture.clock, 21s);
        EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 1);
    }
    SessionFixture fixture;
    fixture.goLive();
    settleAfter(fixture.clock, 100s);
    fixture.factory.systemStt.deliverFinal(u"fine"_s);
    settle();
    settleAfter(fixture.clock, 120s);
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 0);
    settleAfter(fixture.clock, 1s);
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 1);
}

TEST(TranscriptFlowTest, twoFinalsOfTheSameTextMakeTwoLines) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.stt->deliverFinal(u"again"_s);
    fixture.stt->deliverFinal(u"again"_s);
    settle();
    EXPECT_EQ(texts(fixture), (QStringList{u"YOU: again"_s, u"YOU: again"_s}));
}

TEST(TranscriptFlowTest, partialResultsReachNeitherTheTranscriptNorTheServer) {
    SessionFixture fixture;
    fixture.goLive();
    const auto before = fixture.ws->sent.size();
    fixture.stt->deliverDelta(u"Goo"_s);
    fixture.factory.systemStt.deliverDelta(u"Hel"_s);
    settle();
    EXPECT_TRUE(texts(fixture).isEmpty());
    EXPECT_EQ(fixture.ws->sent.size(), before);
}

TEST(TranscriptFlowTest, onlyTheFirstThreeEventsAreLoggedAsDeltasAndOthersUseOneUp) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.stt->deliverDelta(QString(60, u'a'));
    fixture.stt->deliverFailure(u"hiccup"_s);
    fixture.stt->deliverDelta(u"third"_s);
    fixture.stt->deliverDelta(u"fourth"_s);
    settle();
    const auto lines = fixture.debugLines().filter(u"STT_DELTA"_s);
    EXPECT_EQ(lines, (QStringList{u"STT_DELTA: "_s + QString(50, u'a'), u"STT_DELTA: third"_s}));
}

TEST(TranscriptFlowTest, transcriptionFailuresAreShownAndTheLoopsGoOn) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.factory.systemStt.deliverFailure(u"quota"_s);
    settle();
    EXPECT_EQ(fixture.error(), u"System STT: quota"_s);
    fixture.stt->deliverFailure(u"network"_s);
    settle();
    EXPECT_EQ(fixture.error(), u"STT: network"_s);
    EXPECT_TRUE(fixture.debugLines().contains(u"STT_ERROR: network"_s));
    fixture.stt->deliverFinal(u"still here"_s);
    settle();
    EXPECT_EQ(texts(fixture), (QStringList{u"YOU: still here"_s}));
}

TEST(TranscriptFlowTest, chunksPassInOrderToTheirOwnClients) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.audio->deliver("m1");
    fixture.audio->deliver("m2");
    fixture.factory.systemAudio.deliver("s1");
    settle();
    EXPECT_EQ(fixture.stt->received, (std::vector<QByteArray>{"m1", "m2"}));
    EXPECT_EQ(fixture.factory.systemStt.received, (std::vector<QByteArray>{"s1"}));
    EXPECT_EQ(fixture.session().audioLevel(), 0.5F);
    EXPECT_EQ(fixture.session().systemAudioLevel(), 0.25F);
}

TEST(TranscriptFlowTest, theFirstAndEvery500thChunkLeaveALine) {
    SessionFixture fixture;
    fixture.goLive();
    for (int i = 0; i < 1000; ++i)
        fixture.audio->deliver();
    settle();
    EXPECT_EQ(fixture.debugLines().filter(u"AUDIO: "_s),
              (QStringList{u"AUDIO: chunk #1"_s, u"AUDIO: chunk #500"_s, u"AUDIO: chunk #1000"_s}));
}

TEST(TranscriptFlowTest, aMutedMicrophoneSendsNothingReadsZeroAndDoesNotCount) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.audio->deliver();
    settle();
    EXPECT_EQ(fixture.session().audioLevel(), 0.5F);
    fixture.audio->muted = true;
    for (int i = 0; i < 600; ++i)
        fixture.audio->deliver();
    settle();
    EXPECT_EQ(fixture.session().audioLevel(), 0);
    EXPECT_EQ(fixture.stt->received.size(), 1U);
    EXPECT_EQ(fixture.diagnostics.mic.bytesMuted, 2400U);
    fixture.audio->muted = false;
    fixture.audio->deliver();
    settle();
    EXPECT_EQ(fixture.debugLines().filter(u"AUDIO: "_s), (QStringList{u"AUDIO: chunk #1"_s}));
    fixture.session().stopSession();
    settle();
    EXPECT_TRUE(fixture.debugLines().contains(u"AUDIO_SEND: stream ended after 2 chunks"_s));
}

TEST(TranscriptFlowTest, levelsKeepTheirLastValueWhenCaptureEnds) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.factory.systemAudio.deliver();
    settle();
    fixture.factory.systemAudio.endStream();
    settle();
    EXPECT_EQ(fixture.session().systemAudioLevel(), 0.25F);
    EXPECT_TRUE(fixture.session().isSessionActive());
}

TEST(TranscriptFlowTest, cancellingWritesTheEndOfStreamLines) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.stt->deliverFinal(u"hello"_s);
    settle();
    fixture.session().stopSession();
    settle();
    EXPECT_TRUE(fixture.debugLines().contains(u"AUDIO_SEND: stream ended after 0 chunks"_s));
    EXPECT_TRUE(fixture.debugLines().contains(u"STT_EVENTS: stream ended after 1 events"_s));
}

TEST(TranscriptFlowTest, aSendThatStandsStillKeepsNoEndedSessionOpen) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.stt->sendGate.close();
    fixture.factory.systemStt.sendGate.close();
    fixture.audio->deliver("m1");
    fixture.audio->deliver("m2");
    fixture.factory.systemAudio.deliver("s1");
    settle();
    EXPECT_EQ(fixture.stt->received.size(), 1U) << "the second waits for the first";

    fixture.session().stopSession();
    settle();
    EXPECT_FALSE(fixture.audio->isRunning());
    EXPECT_TRUE(fixture.did("ws.disconnect"));
    EXPECT_TRUE(fixture.session().isQuiet());
    EXPECT_TRUE(fixture.debugLines().contains(u"AUDIO_SEND: stream ended after 1 chunks"_s));
}

TEST(TranscriptFlowTest, aLostCoachSocketIsReportedOnceAndTheMicrophoneGoesOn) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.ws->fail(u"Connection reset"_s);
    settle();
    EXPECT_EQ(fixture.error(), u"Disconnected: Connection reset"_s);
    EXPECT_TRUE(fixture.session().isSessionActive());
    fixture.ws->sendError = TransportError{u"gone"_s};
    fixture.stt->deliverFinal(u"still talking"_s);
    settle();
    EXPECT_EQ(texts(fixture), (QStringList{u"YOU: still talking"_s}));
    EXPECT_EQ(fixture.error(), u"Disconnected: Connection reset"_s);
}

TEST(TranscriptFlowTest, aLostSocketAfterTheSessionEndedSaysNothing) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settle();
    fixture.ws->fail(u"Connection reset"_s);
    settle();
    EXPECT_EQ(fixture.session().errorMessage(), std::nullopt);
}

TEST(TranscriptFlowTest, stoppingDoesNotReadAsADisconnection) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.session().stopSession();
    // The socket that is torn down tells its reader of a failure.
    fixture.ws->fail(u"Cancelled"_s);
    settle();
    EXPECT_EQ(fixture.session().errorMessage(), std::nullopt);
}

TEST(TranscriptFlowTest, finalsAfterTheSummaryAreStillRecorded) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settle();
    fixture.stt->deliverFinal(u"one more thing"_s);
    settle();
    EXPECT_EQ(texts(fixture), (QStringList{u"YOU: one more thing"_s}));
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::Transcript>(), 1) << "the socket is still open";
    fixture.ws->sendError = TransportError{u"gone"_s};
    fixture.stt->deliverFinal(u"and another"_s);
    settle();
    EXPECT_EQ(texts(fixture), (QStringList{u"YOU: one more thing"_s, u"YOU: and another"_s}));
    EXPECT_EQ(fixture.session().errorMessage(), std::nullopt);
}

TEST(TranscriptFlowTest, pumpsOnAThreadOfTheirOwnLoseNothing) {
    WorkerThread live{"live"};
    SessionFixture fixture;
    fixture.pumps = &live.executor();
    fixture.goLive();
    constexpr std::size_t chunks = 2000;
    for (std::size_t i = 0; i < chunks; ++i)
        fixture.audio->deliver(QByteArray::number(static_cast<int>(i)));
    EXPECT_TRUE(spinUntil([&] {
        std::size_t received = 0;
        runAndWait(live.executor(), [&] { received = fixture.stt->received.size(); });
        return received == chunks;
    }));
    fixture.session().stopSession();
    EXPECT_TRUE(spinUntil([&] { return fixture.session().isQuiet(); }));
    for (std::size_t i = 0; i < chunks; ++i)
        ASSERT_EQ(fixture.stt->received[i], QByteArray::number(static_cast<int>(i)));
    EXPECT_TRUE(fixture.debugLines().contains(u"AUDIO_SEND: stream ended after 2000 chunks"_s));
}

}  // namespace
}  // namespace corvellan::test
