#include "SttWire.h"

#include <array>
#include <boost/json.hpp>
#include <string_view>

namespace corvellan::sttwire {

using namespace Qt::StringLiterals;

namespace {

namespace json = boost::json;

constexpr std::string_view deltaType = "conversation.item.input_audio_transcription.delta";
constexpr std::string_view completedType = "conversation.item.input_audio_transcription.completed";
constexpr std::string_view errorType = "error";

constexpr QStringView appendStart = u"{\"type\":\"input_audio_buffer.append\",\"audio\":\"";
constexpr QStringView appendEnd = u"\"}";

// The standard alphabet of base64.
constexpr std::u16string_view alphabet = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// Writes `bytes` as base64, with padding, to `out` and returns its end.
QChar* writeBase64(QByteArrayView bytes, QChar* out) {
    constexpr unsigned sixBits = 0x3F;
    const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
    qsizetype left = bytes.size();
    for (; left >= 3; left -= 3, in += 3) {
        const unsigned group = unsigned{in[0]} << 16 | unsigned{in[1]} << 8 | in[2];
        *out++ = QChar{alphabet[group >> 18]};
        *out++ = QChar{alphabet[group >> 12 & sixBits]};
        *out++ = QChar{alphabet[group >> 6 & sixBits]};
        *out++ = QChar{alphabet[group & sixBits]};
    }
    if (left > 0) {
        const unsigned group = unsigned{in[0]} << 16 | (left > 1 ? unsigned{in[1]} << 8 : 0U);
        *out++ = QChar{alphabet[group >> 18]};
        *out++ = QChar{alphabet[group >> 12 & sixBits]};
        *out++ = left > 1 ? QChar{alphabet[group >> 6 & sixBits]} : u'=';
        *out++ = u'=';
    }
    return out;
}

std::optional<QString> stringAt(const json::object& object, std::string_view key) {
    const json::value* const value = object.if_contains(key);
    const json::string* const text = value ? value->if_string() : nullptr;
    if (!text)
        return std::nullopt;
    return QString::fromUtf8(text->data(), static_cast<qsizetype>(text->size()));
}

std::optional<QString> errorMessage(const json::object& frame) {
    const json::value* const value = frame.if_contains("error");
    const json::object* const error = value ? value->if_object() : nullptr;
    return error ? stringAt(*error, "message") : std::nullopt;
}

}  // namespace

std::vector<std::pair<QByteArray, QByteArray>> headers(const QString& ephemeralToken) {
    return {{"Authorization", "Bearer " + ephemeralToken.toUtf8()}, {"OpenAI-Beta", "realtime=v1"}};
}

QString sessionUpdate() {
    // Written out, since the threshold must read exactly 0.6 on the wire, which no binary float is.
    // Two seconds of quiet end an utterance: the pause is wanted long, so that thinking is no ending.
    return u"{\"type\":\"transcription_session.update\","
           "\"session\":{"
           "\"input_audio_format\":\"pcm16\","
           "\"input_audio_transcription\":{\"model\":\"gpt-4o-transcribe\",\"language\":\"en\"},"
           "\"turn_detection\":{\"type\":\"server_vad\",\"threshold\":0.6,\"silence_duration_ms\":2000}"
           "}}"_s;
}

QString append(QByteArrayView pcm) {
    // Straight into the text that the socket takes: audio passes here ten times a second.
    const qsizetype encodedSize = (pcm.size() + 2) / 3 * 4;
    QString message{appendStart.size() + encodedSize + appendEnd.size(), Qt::Uninitialized};
    QChar* out = std::ranges::copy(appendStart, message.data()).out;
    out = writeBase64(pcm, out);
    std::ranges::copy(appendEnd, out);
    return message;
}

std::optional<Received> parse(QByteArrayView frame) {
    // The parser's own limit of depth counts inside fields that nobody reads.
    json::parse_options options;
    options.max_depth = 512;
    std::array<unsigned char, 4096> firstMemory{};
    json::monotonic_resource memory{firstMemory.data(), firstMemory.size()};
    json::error_code failure;
    const std::string_view text{frame.data(), static_cast<std::size_t>(frame.size())};
    const json::value value = json::parse(text, failure, &memory, options);
    const json::object* const object = failure ? nullptr : value.if_object();
    if (!object)
        return std::nullopt;
    std::optional<QString> type = stringAt(*object, "type");
    if (!type)
        return std::nullopt;

    Received received{.type = std::move(*type), .content = Ignored{}};
    const json::string& name = object->at("type").get_string();
    if (name == deltaType) {
        if (auto delta = stringAt(*object, "delta"))
            received.content = Delta{std::move(*delta)};
    } else if (name == completedType) {
        if (auto transcript = stringAt(*object, "transcript"))
            received.content = Completed{std::move(*transcript)};
    } else if (name == errorType) {
        received.content = Failure{errorMessage(*object)};
    }
    return received;
}

}  // namespace corvellan::sttwire
