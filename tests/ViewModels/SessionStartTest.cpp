#include "SessionPipelineFixture.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

TEST(SessionPipelineTest, goesThroughItsStatesToTheLivePhase) {
    SessionFixture fixture;
    auto& session = fixture.session();
    QStringList states;
    recordStatus(session, states);
    session.startSession();
    EXPECT_TRUE(states.isEmpty());
    settle();
    EXPECT_EQ(states, (QStringList{u"Connecting..."_s, u"Connected"_s, u"Waiting for session..."_s}));
    EXPECT_TRUE(session.isConnected());
    EXPECT_TRUE(session.isSessionActive());

    fixture.ws->deliver(ServerMsg::Value{SessionFixture::started()});
    settle();
    EXPECT_EQ(states.mid(3), (QStringList{u"Starting STT..."_s, u"Starting mic..."_s, u"Listening..."_s}));
    EXPECT_EQ(session.currentSessionId(), u"s-1"_s);
    EXPECT_EQ(fixture.log, (CallLog{"ws.connect", "ws.send", "ws.send", "screenShare.stop", "stt.connect",
                                    "audio.startMic", "systemStt.connect", "systemAudio.start"}));
    EXPECT_EQ(std::get<ClientMsg::SetScreenShare>(fixture.ws->sent.at(1).value),
              (ClientMsg::SetScreenShare{.enabled = false}));
    EXPECT_EQ(fixture.stt->token, u"mic-token"_s);
    EXPECT_EQ(fixture.stt->url, u"ws://stt.test/mic"_s);
    EXPECT_EQ(fixture.factory.systemStt.token, u"system-token"_s);
    EXPECT_EQ(fixture.factory.systemStt.url, u"ws://stt.test/system"_s);
    EXPECT_EQ(
        fixture.debugLines(),
        (QStringList{u"WS connected"_s, u"Sent StartSession simMode=false"_s,
                     u"SessionStarted id=s-1 token=yes sysToken=yes"_s, u"Connecting STT..."_s, u"STT connected"_s,
                     u"Starting mic..."_s, u"Starting system audio capture..."_s, u"System audio STT connected"_s,
                     u"Pipeline ready — listening"_s, u"STT_EVENTS: listening for events..."_s}));
}

TEST(SessionPipelineTest, theStartMessageCarriesWhatTheSessionIsAbout) {
    SessionFixture fixture;
    fixture.memoryNote = u"Territory: north"_s;
    fixture.session().setCoachingMode(AudienceType::coldCall);
    fixture.session().startSession({.company = u"Acme"_s,
                                    .hubspotId = u"h1"_s,
                                    .simMode = true,
                                    .scenario = u"cfo"_s,
                                    .discType = DiscType::steady,
                                    .calendarEventId = u"e1"_s,
                                    .callNotes = u" ask for budget "_s,
                                    .goals = std::vector{CallGoal::upsell},
                                    .gameMode = true});
    settle();
    const auto& message = std::get<StartSessionPayload>(fixture.ws->sent.at(0).value);
    EXPECT_EQ(message,
              (StartSessionPayload{.company = u"Acme"_s,
                                   .hubspotId = u"h1"_s,
                                   .simMode = true,
                                   .scenario = u"cfo"_s,
                                   .discType = DiscType::steady,
                                   .calendarEventId = u"e1"_s,
                                   .clientVersion = u"1.2.3"_s,
                                   .audience = AudienceType::coldCall,
                                   .callNotes = u"Rep context:\nTerritory: north\n\nCall prep:\n ask for budget "_s,
                                   .goals = std::vector{CallGoal::upsell},
                                   .gameMode = true}));
    EXPECT_TRUE(fixture.debugLines().contains(u"Sent StartSession simMode=true"_s));
}

TEST(SessionPipelineTest, theMemoryNoteTravelsWithItsFirst2000Characters) {
    SessionFixture fixture;
    // One character of two code points, as some editors write it.
    const auto character = u"e\u0301"_s;
    fixture.memoryNote = character.repeated(2500);
    fixture.session().startSession();
    settle();
    const auto& message = std::get<StartSessionPayload>(fixture.ws->sent.at(0).value);
    const auto expected = u"Rep context:\n"_s + character.repeated(2000);
    EXPECT_EQ(message.callNotes, expected);
}

TEST(SessionPipelineTest, blankCallNotesAddNothing) {
    for (const auto& notes : {u"   "_s, u" \n "_s, QString{}}) {
        SessionFixture fixture;
        fixture.session().startSession({.callNotes = notes});
        settle();
        EXPECT_EQ(std::get<StartSessionPayload>(fixture.ws->sent.at(0).value).callNotes, std::nullopt);
    }
}

TEST(SessionPipelineTest, theNoteOfEachStartIsReadAnew) {
    SessionFixture fixture;
    fixture.memoryNote = u"old"_s;
    fixture.goLive();
    fixture.ws->deliver(ServerMsg::Value{SummaryPayload{.durationSecs = 60}});
    settle();
    fixture.memoryNote = u"new"_s;
    fixture.session().startSession();
    settle();
    EXPECT_EQ(std::get<StartSessionPayload>(fixture.ws->sent.back().value).callNotes, u"Rep context:\nnew"_s);
}

TEST(SessionPipelineTest, startingAnActiveSessionDoesNothingAtAll) {
    SessionFixture fixture;
    fixture.goLive({.company = u"Acme"_s});
    fixture.session().setCoachingMessage(u"keep"_s);
    fixture.session().startSession({.company = u"Other"_s});
    settle();
    EXPECT_EQ(fixture.session().coachingMessage(), u"keep"_s);
    EXPECT_EQ(fixture.session().currentCompany(), u"Acme"_s);
    EXPECT_TRUE(fixture.log.empty());
}

TEST(SessionPipelineTest, startingResetsWhatTheLastSessionLeft) {
    SessionFixture fixture;
    auto& session = fixture.session();
    session.setErrorMessage(u"old"_s);
    session.setLastSummary(SummaryPayload{});
    session.setSelectedOutcome(CallOutcome::voicemail);
    session.setFeedbackRating(1);
    session.setFeedbackNote(u"n"_s);
    session.setFeedbackSubmitted(true);
    session.setCoachingMessage(u"m"_s);
    session.setCoachingType(CoachingType::listen);
    session.setCoachingUrgency(CoachingUrgency::high);
    session.setProductHint(u"p"_s);
    session.setCallStage(CallStage::closing);
    session.setCallPhase(u"ph"_s);
    session.setMeddicScore({.metrics = true});
    session.setMeddicEvidence({u"e"_s});
    session.setMeddicJustConfirmed(2);
    session.setBuyerDisc({.discType = DiscType::steady});
    session.setSentiment(CustomerSentiment::eager);
    session.setElapsedSeconds(9);
    session.setAudioLevel(1);
    session.setSystemAudioLevel(1);
    session.setCrmBrief(u"b"_s);
    session.setCounterpartStreamingText(u"c"_s);
    session.setTrainStage(TrainStage::coaching);
    session.setUserEmail(u"anna@corvellan.example"_s);
    session.transcriptLines().append({.id = {}, .source = TranscriptSource::mic, .text = u"t"_s, .timestamp = {}});

    session.startSession();
    EXPECT_EQ(session.errorMessage(), std::nullopt);
    EXPECT_EQ(session.lastSummary(), std::nullopt);
    EXPECT_EQ(session.selectedOutcome(), std::nullopt);
    EXPECT_EQ(session.feedbackRating(), std::nullopt);
    EXPECT_EQ(session.feedbackNote(), QString{});
    EXPECT_FALSE(session.feedbackSubmitted());
    EXPECT_EQ(session.transcriptLines().count(), 0);
    EXPECT_EQ(session.coachingMessage(), QString{});
    EXPECT_EQ(session.coachingType(), std::nullopt);
    EXPECT_EQ(session.coachingUrgency(), std::nullopt);
    EXPECT_EQ(session.productHint(), std::nullopt);
    EXPECT_EQ(session.callStage(), CallStage::opening);
    EXPECT_EQ(session.callPhase(), std::nullopt);
    EXPECT_EQ(session.meddicScore(), MeddicScore{});
    EXPECT_EQ(session.meddicEvidence(), MeddicEvidence{});
    EXPECT_EQ(session.meddicJustConfirmed(), std::nullopt);
    EXPECT_EQ(session.buyerDisc(), BuyerDisc{});
    EXPECT_EQ(session.sentiment(), CustomerSentiment::neutral);
    EXPECT_EQ(session.elapsedSeconds(), 0);
    EXPECT_EQ(session.audioLevel(), 0);
    EXPECT_EQ(session.systemAudioLevel(), 0);
    EXPECT_EQ(session.crmBrief(), std::nullopt);
    EXPECT_EQ(session.counterpartStreamingText(), QString{});
    EXPECT_EQ(session.trainStage(), TrainStage::listening);
    EXPECT_EQ(session.userEmail(), u"anna@corvellan.example"_s);
}

}  // namespace
}  // namespace corvellan::test
