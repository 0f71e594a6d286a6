#include "SttServiceFixture.h"

namespace corvellan::test {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

TEST_P(SttServiceTest, deltasAndFinalsArriveInOrder) {
    connect();
    const QString piece = u"{\"type\":\"conversation.item.input_audio_transcription.delta\",\"delta\":\"Hel\"}"_s;
    EXPECT_EQ(eventsOf({piece, completed(u"Hello."_s), piece}),
              (std::vector{delta(u"Hel"_s), final(u"Hello."_s), delta(u"Hel"_s)}));
    EXPECT_EQ(side.utterances, 1U);
}

TEST_P(SttServiceTest, anEmptyDeltaIsAnEvent) {
    connect();
    EXPECT_EQ(eventsOf({u"{\"type\":\"conversation.item.input_audio_transcription.delta\",\"delta\":\"\"}"_s}),
              std::vector{delta(QString{})});
}

TEST_P(SttServiceTest, aDeltaThatIsNoStringYieldsNothingAndReadingGoesOn) {
    connect();
    EXPECT_EQ(eventsOf({u"{\"type\":\"conversation.item.input_audio_transcription.delta\",\"delta\":5}"_s}),
              std::vector<SttEvent>{});
}

TEST_P(SttServiceTest, aTranscriptOfBlanksOrTabsYieldsNothing) {
    connect();
    EXPECT_EQ(eventsOf({completed(u"   "_s), completed(u" \\t "_s), completed(QString{})}), std::vector<SttEvent>{});
    EXPECT_EQ(side.utterances, 0U);
    EXPECT_TRUE(log.infos().filter(u"STT transcript"_s).isEmpty());
}

TEST_P(SttServiceTest, aTranscriptKeepsItsBlanks) {
    connect();
    EXPECT_EQ(eventsOf({completed(u"  yes "_s)}), std::vector{final(u"  yes "_s)});
}

TEST_P(SttServiceTest, aTranscriptOfALoneNewlineIsNotBlank) {
    connect();
    EXPECT_EQ(eventsOf({completed(u"\\n"_s)}), std::vector{final(u"\n"_s)});
}

TEST_P(SttServiceTest, aTranscriptThatIsNoStringYieldsNothing) {
    connect();
    EXPECT_EQ(eventsOf({u"{\"type\":\"conversation.item.input_audio_transcription.completed\",\"transcript\":{}}"_s}),
              std::vector<SttEvent>{});
}

TEST_P(SttServiceTest, theLogHoldsTheFirst100CharactersOfATranscript) {
    connect();
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s;
    const QString spoken = family.repeated(100);
    EXPECT_EQ(eventsOf({completed(spoken + u"tail"_s)}), std::vector{final(spoken + u"tail"_s)});
    EXPECT_EQ(log.infos().last(), u"STT transcript: "_s + spoken);
}

TEST_P(SttServiceTest, theTypeOfEachFrameIsLogged) {
    connect();
    eventsOf({u"{\"type\":\"transcription_session.updated\"}"_s, u"{\"type\":\"error\"}"_s});
    EXPECT_EQ(log.debugs().first(2), (QStringList{u"STT recv: transcription_session.updated"_s, u"STT recv: error"_s}));
}

TEST_P(SttServiceTest, anErrorOfTheProviderIsAnEventAndEndsNothing) {
    connect();
    EXPECT_EQ(eventsOf({u"{\"type\":\"error\",\"error\":{\"message\":\"Session expired\"}}"_s, completed(u"more"_s)}),
              (std::vector{failure(u"Session expired"_s), final(u"more"_s)}));
    EXPECT_EQ(log.errors(), QStringList{u"STT error: Session expired"_s});
}

TEST_P(SttServiceTest, anErrorWithoutItsFieldIsUnknown) {
    connect();
    EXPECT_EQ(eventsOf({u"{\"type\":\"error\"}"_s}), std::vector{failure(u"Unknown STT error"_s)});
    EXPECT_EQ(log.errors(), QStringList{u"STT error (raw): {\"type\":\"error\"}"_s});
}

TEST_P(SttServiceTest, anErrorWhoseMessageIsANumberIsUnknown) {
    connect();
    EXPECT_EQ(eventsOf({u"{\"type\":\"error\",\"error\":{\"message\":404}}"_s}),
              std::vector{failure(u"Unknown STT error"_s)});
}

TEST_P(SttServiceTest, theLogHoldsTheFirst500CharactersOfAnUnknownError) {
    connect();
    const QString frame = u"{\"type\":\"error\",\"x\":\"%1\"}"_s.arg(QString(1000, u'y'));
    eventsOf({frame});
    EXPECT_EQ(log.errors(), QStringList{u"STT error (raw): "_s + frame.first(500)});
}

TEST_P(SttServiceTest, whatIsNotForUsIsIgnored) {
    connect();
    EXPECT_EQ(eventsOf({u"no json"_s, u"[]"_s, u"{}"_s, u"{\"type\":1}"_s, u"{\"type\":\"other\",\"delta\":\"x\"}"_s}),
              std::vector<SttEvent>{});
    EXPECT_TRUE(log.errors().isEmpty());
}

TEST_P(SttServiceTest, aBinaryFrameIsDroppedInSilence) {
    connect();
    provider.sayBinary(completed(u"binary"_s).toUtf8());
    EXPECT_EQ(eventsOf({}), std::vector<SttEvent>{});
    EXPECT_EQ(log.debugs().size(), 1);
    EXPECT_TRUE(log.errors().isEmpty());
}

TEST_P(SttServiceTest, anEventBeforeTheStreamIsInstalledIsLost) {
    connect();
    provider.say(completed(u"early"_s));
    ASSERT_TRUE(spinUntil([&] { return log.infos().contains(u"STT transcript: early"_s); }));
    EXPECT_EQ(eventsOf({completed(u"late"_s)}), std::vector{final(u"late"_s)});
}

TEST_P(SttServiceTest, anotherStreamTakesOverAndTheOlderIsNotEnded) {
    connect();
    const auto older = listen();
    EXPECT_EQ(eventsOf({completed(u"one"_s)}), std::vector{final(u"one"_s)});
    EXPECT_TRUE(older->values().empty());
    complete(stt->disconnect());
    settle();
    EXPECT_FALSE(older->hasEnded());
}

}  // namespace
}  // namespace corvellan::test
