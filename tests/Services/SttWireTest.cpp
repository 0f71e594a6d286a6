#include "Services/SttWire.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace corvellan::test {
namespace {

using namespace Qt::StringLiterals;

QJsonObject object(const QString& text) {
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(text.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << text.toStdString();
    return document.object();
}

TEST(SttWireTest, theTokenGoesIntoAHeader) {
    const auto headers = sttwire::headers(u"ek_1"_s);
    const std::vector<std::pair<QByteArray, QByteArray>> expected{{"Authorization", "Bearer ek_1"},
                                                                  {"OpenAI-Beta", "realtime=v1"}};
    EXPECT_EQ(headers, expected);
}

TEST(SttWireTest, theSessionUpdateHoldsExactlyWhatTheProviderIsTold) {
    const QByteArray expected = R"({"type": "transcription_session.update", "session": {
        "input_audio_format": "pcm16",
        "input_audio_transcription": {"model": "gpt-4o-transcribe", "language": "en"},
        "turn_detection": {"type": "server_vad", "threshold": 0.6, "silence_duration_ms": 2000}}})";
    EXPECT_EQ(object(sttwire::sessionUpdate()), QJsonDocument::fromJson(expected).object());
}

TEST(SttWireTest, theThresholdReadsExactlyAsItIsMeant) {
    EXPECT_TRUE(sttwire::sessionUpdate().contains(u"\"threshold\":0.6,"_s));
    EXPECT_TRUE(sttwire::sessionUpdate().contains(u"\"silence_duration_ms\":2000}"_s));
}

TEST(SttWireTest, theSessionUpdateIsCompact) {
    EXPECT_FALSE(sttwire::sessionUpdate().contains(u' '));
}

TEST(SttWireTest, anAppendCarriesItsBytesAsStandardBase64) {
    EXPECT_EQ(sttwire::append("\xfb\xff\xfe"), u"{\"type\":\"input_audio_buffer.append\",\"audio\":\"+//+\"}"_s);
}

TEST(SttWireTest, anAppendOfAnyLengthDecodesToTheSameBytes) {
    QByteArray pcm;
    for (int size = 0; size <= 1200; ++size) {
        const QJsonObject message = object(sttwire::append(pcm));
        ASSERT_EQ(message.size(), 2);
        ASSERT_EQ(message["type"_L1].toString(), u"input_audio_buffer.append"_s);
        const auto decoded = QByteArray::fromBase64Encoding(message["audio"_L1].toString().toLatin1(),
                                                            QByteArray::AbortOnBase64DecodingErrors);
        ASSERT_EQ(decoded.decodingStatus, QByteArray::Base64DecodingStatus::Ok) << size;
        ASSERT_EQ(decoded.decoded, pcm);
        pcm.append(static_cast<char>(size * 37 + size / 7));
    }
}

TEST(SttWireTest, aDeltaIsRead) {
    const auto received =
        sttwire::parse(R"({"type":"conversation.item.input_audio_transcription.delta","delta":"Hel\u00e9 ","x":[1]})");
    ASSERT_TRUE(received);
    EXPECT_EQ(received->type, u"conversation.item.input_audio_transcription.delta"_s);
    ASSERT_TRUE(std::holds_alternative<sttwire::Delta>(received->content));
    EXPECT_EQ(std::get<sttwire::Delta>(received->content).text, u"Hel\u00e9 "_s);
}

TEST(SttWireTest, aCompletedTranscriptIsRead) {
    const auto received = sttwire::parse(
        R"({"transcript":" Good morning.\n","type":"conversation.item.input_audio_transcription.completed"})");
    ASSERT_TRUE(received);
    ASSERT_TRUE(std::holds_alternative<sttwire::Completed>(received->content));
    EXPECT_EQ(std::get<sttwire::Completed>(received->content).transcript, u" Good morning.\n"_s);
}

TEST(SttWireTest, anErrorIsReadWithItsMessage) {
    const auto received = sttwire::parse(R"({"type":"error","error":{"message":"No audio","code":null}})");
    ASSERT_TRUE(received);
    ASSERT_TRUE(std::holds_alternative<sttwire::Failure>(received->content));
    EXPECT_EQ(std::get<sttwire::Failure>(received->content).message, u"No audio"_s);
}

TEST(SttWireTest, anErrorWithoutUsableMessageIsStillAnError) {
    for (const char* frame : {R"({"type":"error"})", R"({"type":"error","error":"bad"})",
                              R"({"type":"error","error":{"message":7}})", R"({"type":"error","error":{}})",
                              R"({"type":"error","error":null})", R"({"type":"error","message":"here"})"}) {
        const auto received = sttwire::parse(frame);
        ASSERT_TRUE(received) << frame;
        ASSERT_TRUE(std::holds_alternative<sttwire::Failure>(received->content)) << frame;
        EXPECT_FALSE(std::get<sttwire::Failure>(received->content).message) << frame;
    }
}

TEST(SttWireTest, aFieldOfTheWrongKindMeansNothing) {
    for (const char* frame : {R"({"type":"conversation.item.input_audio_transcription.delta","delta":5})",
                              R"({"type":"conversation.item.input_audio_transcription.delta"})",
                              R"({"type":"conversation.item.input_audio_transcription.completed","transcript":null})",
                              R"({"type":"transcription_session.updated","delta":"x"})"}) {
        const auto received = sttwire::parse(frame);
        ASSERT_TRUE(received) << frame;
        EXPECT_TRUE(std::holds_alternative<sttwire::Ignored>(received->content)) << frame;
    }
}

TEST(SttWireTest, whatIsNoObjectWithATypeIsNothing) {
    for (const char* frame : {"", " ", "null", "[]", "{}", "{", R"({"type":7})", R"({"type":null})", R"(["type"])",
                              R"("error")", R"({"type":"error"} x)", "\xff\xfe", R"({"type":"\ud800"})"})
        EXPECT_FALSE(sttwire::parse(frame)) << frame;
}

TEST(SttWireTest, nestingThatNobodyReadsIsNoError) {
    const QByteArray nested = QByteArray(100, '[') + QByteArray(100, ']');
    const auto received = sttwire::parse(R"({"type":"error","usage":)" + nested + "}");
    ASSERT_TRUE(received);
    EXPECT_EQ(received->type, u"error"_s);
}

TEST(SttWireTest, endlessNestingIsRefused) {
    EXPECT_FALSE(sttwire::parse(R"({"type":"error","usage":)" + QByteArray(1'000'000, '[')));
}

}  // namespace
}  // namespace corvellan::test
