#include <gtest/gtest.h>

#include <QSignalSpy>

#include "Support/LogCapture.h"
#include "Support/SessionFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan::test {
namespace {

CoachingPayload tip(const QString& message, MeddicScore meddic = {}) {
    return {.message = message, .coachingType = CoachingType::whisper, .state = {.meddic = meddic}};
}

void handle(SessionFixture& fixture, ServerMsg::Value value) {
    fixture.session().handleServerMessage(ServerMsg{std::move(value)});
}

TEST(ServerMessageTest, aTipChangesTheWholeState) {
    SessionFixture fixture;
    auto& session = fixture.session();
    handle(fixture, CoachingPayload{.message = u"Ask who signs."_s,
                                    .coachingType = CoachingType::questionPrompt,
                                    .urgency = CoachingUrgency::high,
                                    .productHint = u"Starter plan"_s,
                                    .state = {.callStage = CallStage::qualification,
                                              .meddicScore = 1,
                                              .meddic = {.champion = true},
                                              .disc = {.discType = DiscType::dominant,
                                                       .confidence = DiscConfidence::medium,
                                                       .signals_ = u"short"_s},
                                              .sentiment = CustomerSentiment::skeptical,
                                              .callPhase = u"needs_analysis"_s}});
    EXPECT_EQ(session.coachingMessage(), u"Ask who signs."_s);
    EXPECT_EQ(session.coachingType(), CoachingType::questionPrompt);
    EXPECT_EQ(session.coachingUrgency(), CoachingUrgency::high);
    EXPECT_EQ(session.productHint(), u"Starter plan"_s);
    EXPECT_EQ(session.callStage(), CallStage::qualification);
    EXPECT_EQ(session.callPhase(), u"needs_analysis"_s);
    EXPECT_EQ(session.meddicScore().score(), 1);
    EXPECT_EQ(session.buyerDisc().discType, DiscType::dominant);
    EXPECT_EQ(session.sentiment(), CustomerSentiment::skeptical);
    EXPECT_EQ(session.statusText(), u"Coaching"_s);
    ASSERT_EQ(session.transcriptLines().count(), 1);
    EXPECT_EQ(session.transcriptLines().lines()[0].source, TranscriptSource::coach);
    EXPECT_EQ(session.transcriptLines().lines()[0].text, u"Ask who signs."_s);
    EXPECT_EQ(fixture.debugLines(), (QStringList{u"COACHING: Ask who signs."_s}));
}

TEST(ServerMessageTest, anAbsentUrgencyAndHintClearTheOldOnes) {
    SessionFixture fixture;
    auto first = tip(u"one"_s);
    first.urgency = CoachingUrgency::high;
    first.productHint = u"hint"_s;
    handle(fixture, first);
    handle(fixture, tip(u"two"_s));
    EXPECT_EQ(fixture.session().coachingUrgency(), std::nullopt);
    EXPECT_EQ(fixture.session().productHint(), std::nullopt);
}

TEST(ServerMessageTest, anAbsentOrEmptyPhaseLeavesTheOldOne) {
    SessionFixture fixture;
    auto first = tip(u"one"_s);
    first.state.callPhase = u"intro"_s;
    handle(fixture, first);
    handle(fixture, tip(u"two"_s));
    auto third = tip(u"three"_s);
    third.state.callPhase = u""_s;
    handle(fixture, third);
    EXPECT_EQ(fixture.session().callPhase(), u"intro"_s);
}

TEST(ServerMessageTest, theDebugLineHoldsTheFirst200Characters) {
    SessionFixture fixture;
    handle(fixture, tip(QString(250, u'x')));
    EXPECT_EQ(fixture.debugLines(), (QStringList{u"COACHING: "_s + QString(200, u'x')}));
}

TEST(ServerMessageTest, twoCriteriaInOneTipFlashOnlyTheFirst) {
    SessionFixture fixture;
    handle(fixture, tip(u"a"_s, {.decisionProcess = true, .identifyPain = true}));
    EXPECT_EQ(fixture.session().meddicJustConfirmed(), 3);
    EXPECT_EQ(fixture.session().meddicScore().score(), 2);
}

TEST(ServerMessageTest, aFlashEndsAfterOneAndAHalfSeconds) {
    SessionFixture fixture;
    handle(fixture, tip(u"a"_s, {.metrics = true}));
    settleAfter(fixture.clock, 1499ms);
    EXPECT_EQ(fixture.session().meddicJustConfirmed(), 0);
    settleAfter(fixture.clock, 1ms);
    EXPECT_EQ(fixture.session().meddicJustConfirmed(), std::nullopt);
}

TEST(ServerMessageTest, aSecondTipClearsTheFlashAtOnceAndTheOldTimerDoesNothing) {
    SessionFixture fixture;
    handle(fixture, tip(u"a"_s, {.metrics = true}));
    settleAfter(fixture.clock, 1s);
    handle(fixture, tip(u"b"_s, {.metrics = true}));
    EXPECT_EQ(fixture.session().meddicJustConfirmed(), std::nullopt);
    handle(fixture, tip(u"c"_s, {.metrics = true, .champion = true}));
    EXPECT_EQ(fixture.session().meddicJustConfirmed(), 5);
    settleAfter(fixture.clock, 600ms);
    EXPECT_EQ(fixture.session().meddicJustConfirmed(), 5);
    settleAfter(fixture.clock, 900ms);
    EXPECT_EQ(fixture.session().meddicJustConfirmed(), std::nullopt);
}

TEST(ServerMessageTest, anOldTimerClearsANewerFlashOfTheSameCriterion) {
    SessionFixture fixture;
    handle(fixture, tip(u"a"_s, {.metrics = true}));
    settleAfter(fixture.clock, 1s);
    handle(fixture, tip(u"b"_s));
    handle(fixture, tip(u"c"_s, {.metrics = true}));
    EXPECT_EQ(fixture.session().meddicJustConfirmed(), 0);
    // The test on waking compares the index alone.
    settleAfter(fixture.clock, 500ms);
    EXPECT_EQ(fixture.session().meddicJustConfirmed(), std::nullopt);
}

TEST(ServerMessageTest, evidenceOfAnyOtherLengthThanSixLeavesTheOld) {
    SessionFixture fixture;
    auto& session = fixture.session();
    auto full = tip(u"a"_s);
    full.state.meddicEvidence = {{u"m"_s, std::nullopt, u"c"_s, std::nullopt, std::nullopt, u"h"_s}};
    handle(fixture, full);
    const MeddicEvidence expected{u"m"_s, std::nullopt, u"c"_s, std::nullopt, std::nullopt, u"h"_s};
    EXPECT_EQ(session.meddicEvidence(), expected);
    auto five = tip(u"b"_s);
    five.state.meddicEvidence = std::vector<std::optional<QString>>(5, u"x"_s);
    handle(fixture, five);
    EXPECT_EQ(session.meddicEvidence(), expected);
    handle(fixture, tip(u"c"_s));
    EXPECT_EQ(session.meddicEvidence(), expected);
}

TEST(ServerMessageTest, anEmptyTipClearsTheMessageAndAddsNoLine) {
    SessionFixture fixture;
    handle(fixture, tip(u"before"_s));
    handle(fixture, tip(u""_s));
    EXPECT_EQ(fixture.session().coachingMessage(), u""_s);
    EXPECT_EQ(fixture.session().transcriptLines().count(), 1);
}

TEST(ServerMessageTest, tipsToBeSilentOrToListenAreShownButLeftOutOfTheTranscript) {
    SessionFixture fixture;
    for (const auto type : {CoachingType::silence, CoachingType::listen}) {
        auto quiet = tip(u"Let them talk"_s);
        quiet.coachingType = type;
        handle(fixture, quiet);
        EXPECT_EQ(fixture.session().coachingMessage(), u"Let them talk"_s);
    }
    EXPECT_EQ(fixture.session().transcriptLines().count(), 0);
}

TEST(ServerMessageTest, crmDataWithoutASummaryTouchesNothing) {
    SessionFixture fixture;
    handle(fixture, tip(u"keep"_s));
    handle(fixture, ServerMsg::CrmData{.companyName = u"Acme"_s, .summary = std::nullopt});
    EXPECT_EQ(fixture.session().crmBrief(), std::nullopt);
    EXPECT_EQ(fixture.session().coachingMessage(), u"keep"_s);
    handle(fixture, ServerMsg::CrmData{.companyName = u"Acme"_s, .summary = u"Big account"_s});
    EXPECT_EQ(fixture.session().crmBrief(), u"Big account"_s);
    EXPECT_EQ(fixture.session().coachingMessage(), u"CRM brief loaded for Acme"_s);
}

TEST(ServerMessageTest, aSummaryOfNineSecondsLeavesNothingBehind) {
    SessionFixture fixture;
    FakeStore store;
    auto& session = fixture.session();
    session.setModelContext(&store);
    session.setIsSessionActive(true);
    session.setLastSummary(SummaryPayload{.durationSecs = 60});
    const LogCapture log{u"Session"_s};
    handle(fixture, SummaryPayload{.durationSecs = 9});
    settle();
    EXPECT_EQ(log.infos(), QStringList{u"Session summary received"_s});
    EXPECT_FALSE(session.isSessionActive());
    EXPECT_EQ(session.statusText(), u"Session ended"_s);
    EXPECT_EQ(session.lastSummary(), std::nullopt);
    EXPECT_TRUE(store.records.empty());
}

TEST(ServerMessageTest, aSummaryOfTenSecondsIsShownAndStored) {
    SessionFixture fixture;
    FakeStore store;
    auto& session = fixture.session();
    session.setModelContext(&store);
    fixture.goLive({.company = u"Acme"_s,
                    .simMode = true,
                    .scenario = u"cfo"_s,
                    .calendarEventId = u"e-1"_s,
                    .audience = AudienceType::discovery});
    session.setMeddicEvidence({u"saves 30 %"_s});
    session.setCoachingMode(AudienceType::coldCall);
    const SummaryPayload summary{.durationSecs = 10,
                                 .turns = 4,
                                 .meddic = {.metrics = true},
                                 .disc = {.discType = DiscType::steady},
                                 .coachingPoints = {u"Good questions"_s},
                                 .transcript = {u"[Mic] Hello"_s, u"[Audio] Hi"_s},
                                 .callId = u"c-1"_s};
    handle(fixture, summary);
    settle();
    EXPECT_EQ(session.lastSummary(), summary);
    ASSERT_EQ(store.records.size(), 1U);
    EXPECT_EQ(store.saves, 1);
    const auto& record = store.records[0];
    EXPECT_FALSE(record.id.isNull());
    EXPECT_EQ(record.createdDate, fixture.clock.wallNow());
    EXPECT_EQ(record.durationSecs, 10);
    EXPECT_EQ(record.turns, 4);
    EXPECT_EQ(record.meddic(), summary.meddic);
    EXPECT_EQ(record.disc(), summary.disc);
    EXPECT_EQ(record.coachingPoints, summary.coachingPoints);
    EXPECT_EQ(record.transcript, summary.transcript);
    EXPECT_EQ(record.scenario, u"cfo"_s);
    EXPECT_TRUE(record.wasTrainMode);
    EXPECT_EQ(record.companyName, u"Acme"_s);
    EXPECT_EQ(record.calendarEventId, u"e-1"_s);
    EXPECT_EQ(record.callId, u"c-1"_s);
    // The preference at the time of the summary, not the session's own audience.
    EXPECT_EQ(record.audience(), AudienceType::coldCall);
    ASSERT_TRUE(record.meddicEvidence);
    EXPECT_EQ(record.meddicEvidence->size(), 6U);
    EXPECT_EQ(record.meddicEvidence->at(0), u"saves 30 %"_s);
    EXPECT_EQ(fixture.diagnostics.recordsStored, 1U);
}

TEST(ServerMessageTest, withoutAStoreTheSummaryIsShownAndNothingIsKept) {
    SessionFixture fixture;
    handle(fixture, SummaryPayload{.durationSecs = 100});
    settle();
    EXPECT_TRUE(fixture.session().lastSummary());
    EXPECT_EQ(fixture.diagnostics.recordsStored, 0U);
}

TEST(ServerMessageTest, aFailedSaveIsIgnored) {
    SessionFixture fixture;
    FakeStore store;
    store.saveError = TransportError{u"disk full"_s};
    fixture.session().setModelContext(&store);
    handle(fixture, SummaryPayload{.durationSecs = 100});
    settle();
    EXPECT_TRUE(fixture.session().lastSummary());
    EXPECT_EQ(fixture.session().errorMessage(), std::nullopt);
}

TEST(ServerMessageTest, anOverlongDurationIsStoredAsTheLongest) {
    SessionFixture fixture;
    FakeStore store;
    fixture.session().setModelContext(&store);
    handle(fixture, SummaryPayload{.durationSecs = std::numeric_limits<std::uint64_t>::max()});
    settle();
    EXPECT_EQ(store.records.at(0).durationSecs, std::numeric_limits<std::int64_t>::max());
}

TEST(ServerMessageTest, anErrorInTheLivePhaseKeepsTheSessionRunning) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.ws->deliver(ServerMsg::Value{ServerMsg::Failure{u"slow down"_s}});
    settle();
    EXPECT_EQ(fixture.error(), u"Server: slow down"_s);
    EXPECT_TRUE(fixture.session().isSessionActive());
    EXPECT_EQ(fixture.session().statusText(), u"Listening..."_s);
}

TEST(ServerMessageTest, laterSessionStartsRefreshedTokensAndPongsChangeNothing) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.log.clear();
    handle(fixture, SessionStartedPayload{.sessionId = u"other"_s});
    handle(fixture, ServerMsg::TokenRefreshed{.openaiEphemeralToken = u"new"_s, .expiresAt = 1});
    handle(fixture, ServerMsg::Pong{});
    settle();
    EXPECT_EQ(fixture.session().currentSessionId(), u"s-1"_s);
    EXPECT_EQ(fixture.stt->token, u"mic-token"_s);
    EXPECT_TRUE(fixture.log.empty());
}

TEST(ServerMessageTest, theBuyersReplyGrowsAndBecomesALine) {
    SessionFixture fixture;
    fixture.goLive({.simMode = true});
    handle(fixture, ServerMsg::CounterpartToken{u" Well, "_s});
    handle(fixture, ServerMsg::CounterpartToken{u"maybe. "_s});
    EXPECT_EQ(fixture.session().counterpartStreamingText(), u" Well, maybe. "_s);
    EXPECT_EQ(fixture.session().trainStage(), TrainStage::counterpartSpeaking);
    EXPECT_EQ(fixture.factory.tts.fed, (QStringList{u" Well, "_s, u"maybe. "_s}));
    handle(fixture, ServerMsg::CounterpartDone{12});
    EXPECT_EQ(fixture.session().counterpartStreamingText(), QString{});
    EXPECT_EQ(fixture.session().transcriptLines().lines().back().text, u"Well, maybe."_s);
    EXPECT_EQ(fixture.session().transcriptLines().lines().back().source, TranscriptSource::system);
    EXPECT_EQ(fixture.log, (CallLog{"tts.flush"}));
    EXPECT_TRUE(fixture.debugLines().contains(u"COUNTERPART_DONE: Well, maybe."_s));
}

TEST(ServerMessageTest, theDebugLineHoldsTheFirst500CharactersOfAReply) {
    SessionFixture fixture;
    const auto character = u"e\u0301"_s;
    handle(fixture, ServerMsg::CounterpartToken{u" "_s + character.repeated(600)});
    handle(fixture, ServerMsg::CounterpartDone{0});
    EXPECT_EQ(fixture.debugLines(), (QStringList{u"COUNTERPART_DONE: "_s + character.repeated(500)}));
    EXPECT_EQ(fixture.session().transcriptLines().lines().back().text, character.repeated(600));
}

TEST(ServerMessageTest, anEmptyReplyAddsNoLine) {
    SessionFixture fixture;
    handle(fixture, ServerMsg::CounterpartToken{u" \n"_s});
    handle(fixture, ServerMsg::CounterpartDone{0});
    EXPECT_EQ(fixture.session().transcriptLines().count(), 0);
}

TEST(ServerMessageTest, anExtensionCallOnTheSessionsOwnSocketIsTakenUp) {
    SessionFixture fixture;
    auto& session = fixture.session();
    const ExtensionContextPayload call{
        .entityType = u"contact"_s, .entityId = u"7"_s, .companyName = u"Acme"_s, .callActive = true};
    handle(fixture, call);
    EXPECT_EQ(session.extensionContext(), call);
    EXPECT_TRUE(session.extensionCallActive());
    EXPECT_EQ(session.autoStartCountdown(), 3);
    session.cancelAutoStart();
    EXPECT_EQ(session.autoStartCountdown(), std::nullopt);
    auto over = call;
    over.callActive = false;
    handle(fixture, over);
    EXPECT_FALSE(session.extensionCallActive());
}

TEST(ServerMessageTest, anExtensionCallThatIsKnownIsNotDetectedAgain) {
    SessionFixture fixture;
    auto& session = fixture.session();
    const ExtensionContextPayload call{.entityType = u"contact"_s, .entityId = u"7"_s, .callActive = true};
    handle(fixture, call);
    settleAfter(fixture.clock, 1s);
    EXPECT_EQ(session.autoStartCountdown(), 2);
    auto renamed = call;
    renamed.companyName = u"Acme"_s;
    handle(fixture, renamed);
    settle();
    EXPECT_EQ(session.extensionContext(), renamed);
    EXPECT_EQ(session.autoStartCountdown(), 2);
    EXPECT_TRUE(session.extensionCallActive());
}

TEST(ServerMessageTest, theEndOfTheExtensionsCallEndsTheSession) {
    SessionFixture fixture;
    fixture.goLive();
    fixture.session().setExtensionCallActive(true);
    fixture.ws->deliver(ServerMsg::Value{ServerMsg::ExtensionCallEnded{}});
    settle();
    EXPECT_FALSE(fixture.session().extensionCallActive());
    EXPECT_EQ(fixture.ws->countSent<ClientMsg::EndSession>(), 1);
}

TEST(ServerMessageTest, theCountdownStartsASessionAfterThreeSeconds) {
    SessionFixture fixture;
    auto& session = fixture.session();
    handle(fixture, ExtensionContextPayload{.entityType = u"contact"_s,
                                            .entityId = u"7"_s,
                                            .displayName = u"Ann"_s,
                                            .hubspotCompanyId = u"h-7"_s,
                                            .callActive = true});
    settleAfter(fixture.clock, 2s);
    EXPECT_EQ(session.autoStartCountdown(), 1);
    EXPECT_FALSE(session.isSessionActive());
    settleAfter(fixture.clock, 1s);
    EXPECT_EQ(session.autoStartCountdown(), std::nullopt);
    EXPECT_TRUE(session.isSessionActive());
    EXPECT_EQ(session.currentCompany(), u"Ann"_s);
}

}  // namespace
}  // namespace corvellan::test
