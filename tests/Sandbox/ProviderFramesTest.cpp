#include "Sandbox/ProviderFrames.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

#include "Sandbox/WebSocketDoor.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using sandbox::AudioAppend;
using sandbox::decodeProviderRequest;
using sandbox::SessionUpdate;

QByteArray updateWith(const QByteArray& detection) {
    return R"({"type":"transcription_session.update","session":{"input_audio_format":"pcm16",
        "input_audio_transcription":{"model":"m","language":"en"},"turn_detection":)" +
           detection + "}}";
}

}  // namespace

TEST(ProviderFramesTest, readsWhatAClientAsksFor) {
    const auto request =
        decodeProviderRequest(updateWith(R"({"type":"server_vad","threshold":0.6,"silence_duration_ms":2000})"));
    ASSERT_TRUE(request);
    const auto& update = std::get<SessionUpdate>(*request);
    EXPECT_EQ(update.model, u"m"_s);
    EXPECT_EQ(update.language, u"en"_s);
    EXPECT_EQ(update.detection, (sandbox::TurnDetection{.threshold = 0.6, .silence = std::chrono::milliseconds{2000}}));
}

TEST(ProviderFramesTest, hasDefaultsForWhatIsNotAskedFor) {
    const auto request = decodeProviderRequest(updateWith(R"({"type":"server_vad"})"));
    ASSERT_TRUE(request);
    EXPECT_EQ(std::get<SessionUpdate>(*request).detection, sandbox::TurnDetection{});
}

TEST(ProviderFramesTest, readsAudio) {
    const auto request = decodeProviderRequest(R"({"type":"input_audio_buffer.append","audio":"AQACAP//"})");
    ASSERT_TRUE(request);
    EXPECT_EQ(std::get<AudioAppend>(*request).pcm.toHex(), "01000200ffff");
}

struct BadFrame {
    QByteArray frame;
    const char* code;
    const char* parameter;
};

class BadFrames : public testing::TestWithParam<BadFrame> {};

TEST_P(BadFrames, areRefusedWithTheKey) {
    const auto request = decodeProviderRequest(GetParam().frame);
    ASSERT_FALSE(request);
    EXPECT_EQ(request.error().code.toStdString(), GetParam().code);
    EXPECT_EQ(request.error().parameter.toStdString(), GetParam().parameter);
    const auto error = QJsonDocument::fromJson(sandbox::frames::error(request.error())).object();
    EXPECT_EQ(error[u"type"_s], u"error"_s);
    EXPECT_FALSE(error[u"error"_s].toObject()[u"message"_s].toString().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Frames, BadFrames,
    testing::Values(
        BadFrame{"", "invalid_json", ""}, BadFrame{"{", "invalid_json", ""}, BadFrame{"[]", "invalid_json", ""},
        BadFrame{"{}", "invalid_value", "type"}, BadFrame{R"({"type":1})", "invalid_value", "type"},
        BadFrame{R"({"type":"input_audio_buffer.commit"})", "invalid_value", "type"},
        BadFrame{R"({"type":"input_audio_buffer.append"})", "invalid_value", "audio"},
        BadFrame{R"({"type":"input_audio_buffer.append","audio":""})", "input_audio_buffer_append_empty", "audio"},
        BadFrame{R"({"type":"input_audio_buffer.append","audio":"AQAC"})", "invalid_audio", "audio"},
        BadFrame{R"({"type":"input_audio_buffer.append","audio":"AQA"})", "invalid_base64", "audio"},
        BadFrame{R"({"type":"input_audio_buffer.append","audio":"AQA=AQA="})", "invalid_base64", "audio"},
        BadFrame{R"({"type":"input_audio_buffer.append","audio":"AQ\nA="})", "invalid_base64", "audio"},
        BadFrame{R"({"type":"input_audio_buffer.append","audio":"__8="})", "invalid_base64", "audio"},
        BadFrame{R"({"type":"input_audio_buffer.append","audio":"Ä==="})", "invalid_base64", "audio"},
        BadFrame{R"({"type":"input_audio_buffer.append","audio":"AQA=","side":"mic"})", "unknown_parameter", "side"},
        BadFrame{R"({"type":"transcription_session.update"})", "invalid_value", "session"},
        BadFrame{R"({"type":"transcription_session.update","session":{}})", "invalid_value",
                 "session.input_audio_format"},
        BadFrame{R"({"type":"transcription_session.update","session":{"input_audio_format":"pcm16"}})", "invalid_value",
                 "session.input_audio_transcription"},
        BadFrame{R"({"type":"transcription_session.update","session":{"input_audio_format":"pcm16",
                     "input_audio_transcription":{"language":"en"}}})",
                 "invalid_value", "session.input_audio_transcription.model"},
        BadFrame{R"({"type":"transcription_session.update","session":{"input_audio_format":"pcm16",
                     "input_audio_transcription":{"model":"m"},"instructions":"x"}})",
                 "unknown_parameter", "session.instructions"},
        BadFrame{updateWith("7"), "invalid_value", "session.turn_detection"},
        BadFrame{updateWith(R"({"type":"none"})"), "invalid_value", "session.turn_detection.type"},
        BadFrame{updateWith(R"({"type":"server_vad","threshold":1.1})"), "invalid_value",
                 "session.turn_detection.threshold"},
        BadFrame{updateWith(R"({"type":"server_vad","threshold":"0.6"})"), "invalid_value",
                 "session.turn_detection.threshold"},
        BadFrame{updateWith(R"({"type":"server_vad","silence_duration_ms":2000.5})"), "invalid_value",
                 "session.turn_detection.silence_duration_ms"},
        BadFrame{updateWith(R"({"type":"server_vad","silence_duration_ms":-1})"), "invalid_value",
                 "session.turn_detection.silence_duration_ms"},
        BadFrame{updateWith(R"({"type":"server_vad","eagerness":"low"})"), "unknown_parameter",
                 "session.turn_detection.eagerness"}));

TEST(RequestHeadTest, readsAnUpgrade) {
    const auto head = sandbox::parseRequestHead(
        "GET /v1/realtime?intent=transcription HTTP/1.1\r\nHost: a:1\r\n"
        "AUTHORIZATION:  Bearer x \r\n\r\nrest");
    ASSERT_TRUE(head);
    EXPECT_EQ(head->method, "GET");
    EXPECT_EQ(head->target.path(), u"/v1/realtime"_s);
    EXPECT_EQ(head->target.query(), u"intent=transcription"_s);
    EXPECT_EQ(head->headers.value("authorization"), "Bearer x");
}

TEST(RequestHeadTest, refusesWhatIsNone) {
    for (const auto* bytes :
         {"", "GET / HTTP/1.1\r\n", "GET /\r\n\r\n", "GET x HTTP/1.1\r\n\r\n", "GET / SMTP/1.1\r\n\r\n",
          "GET / HTTP/1.1\r\nno colon\r\n\r\n", "GET / HTTP/1.1\r\n: x\r\n\r\n"})
        EXPECT_FALSE(sandbox::parseRequestHead(bytes)) << bytes;
}

}  // namespace corvellan::test
