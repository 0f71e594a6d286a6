#include "ProviderFrames.h"

#include <algorithm>
#include <initializer_list>
#include <QJsonDocument>
#include <QJsonObject>

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Fault = std::unexpected<ProviderFault>;

Fault fault(const QString& code, const QString& message, const QString& parameter = {}) {
    return Fault{ProviderFault{.code = code, .message = message, .parameter = parameter}};
}

Fault wrongValue(const QString& parameter, const QString& expected) {
    return fault(u"invalid_value"_s, u"Invalid value for '%1': expected %2."_s.arg(parameter, expected), parameter);
}

/// Every key of `object` must be one of `known`.
std::expected<void, ProviderFault> onlyKnown(const QJsonObject& object, const QString& path,
                                             std::initializer_list<QStringView> known) {
    for (const auto& key : object.keys()) {
        if (std::ranges::find(known, QStringView{key}) == known.end()) {
            const QString parameter = path.isEmpty() ? key : path + u'.' + key;
            return fault(u"unknown_parameter"_s, u"Unknown parameter: '%1'."_s.arg(parameter.left(200)),
                         parameter.left(200));
        }
    }
    return {};
}

std::expected<TurnDetection, ProviderFault> decodeTurnDetection(const QJsonValue& value) {
    TurnDetection detection;
    if (value.isUndefined())
        return detection;
    const QString path = u"session.turn_detection"_s;
    if (!value.isObject())
        return wrongValue(path, u"an object"_s);
    const auto object = value.toObject();
    if (const auto keys =
            onlyKnown(object, path, {u"type", u"threshold", u"silence_duration_ms", u"prefix_padding_ms"});
        !keys)
        return std::unexpected(keys.error());
    if (object[u"type"_s].toString() != u"server_vad"_s)
        return wrongValue(path + u".type"_s, u"'server_vad'"_s);
    if (object.contains(u"threshold"_s)) {
        const auto threshold = object[u"threshold"_s];
        if (!threshold.isDouble() || threshold.toDouble() < 0 || threshold.toDouble() > 1)
            return wrongValue(path + u".threshold"_s, u"a number from 0 to 1"_s);
        detection.threshold = threshold.toDouble();
    }
    constexpr int longest = 10'000;
    for (const auto& name : {u"silence_duration_ms"_s, u"prefix_padding_ms"_s}) {
        if (!object.contains(name))
            continue;
        const int milliseconds = object[name].toInt(-1);
        if (!object[name].isDouble() || milliseconds < 0 || milliseconds > longest)
            return wrongValue(path + u'.' + name, u"an integer from 0 to 10000"_s);
        if (name == u"silence_duration_ms"_s)
            detection.silence = std::chrono::milliseconds{milliseconds};
    }
    return detection;
}

std::expected<ProviderRequest, ProviderFault> decodeUpdate(const QJsonObject& message) {
    if (const auto keys = onlyKnown(message, {}, {u"type", u"event_id", u"session"}); !keys)
        return std::unexpected(keys.error());
    if (!message[u"session"_s].isObject())
        return wrongValue(u"session"_s, u"an object"_s);
    const auto session = message[u"session"_s].toObject();
    if (const auto keys =
            onlyKnown(session, u"session"_s, {u"input_audio_format", u"input_audio_transcription", u"turn_detection"});
        !keys)
        return std::unexpected(keys.error());
    if (session[u"input_audio_format"_s].toString() != u"pcm16"_s)
        return wrongValue(u"session.input_audio_format"_s, u"'pcm16'"_s);

    const QString path = u"session.input_audio_transcription"_s;
    if (!session[u"input_audio_transcription"_s].isObject())
        return wrongValue(path, u"an object"_s);
    const auto transcription = session[u"input_audio_transcription"_s].toObject();
    if (const auto keys = onlyKnown(transcription, path, {u"model", u"language", u"prompt"}); !keys)
        return std::unexpected(keys.error());
    if (transcription[u"model"_s].toString().isEmpty())
        return wrongValue(path + u".model"_s, u"the name of a model"_s);
    const auto language = transcription[u"language"_s];
    if (!language.isUndefined() && language.toString().isEmpty())
        return wrongValue(path + u".language"_s, u"a language"_s);

    const auto detection = decodeTurnDetection(session[u"turn_detection"_s]);
    if (!detection)
        return std::unexpected(detection.error());
    return SessionUpdate{
        .model = transcription[u"model"_s].toString(), .language = language.toString(), .detection = *detection};
}

// Qt's decoder lets missing padding pass.
bool isCanonicalLength(const QByteArray& base64) {
    return base64.size() % 4 == 0;
}

std::expected<ProviderRequest, ProviderFault> decodeAppend(const QJsonObject& message) {
    if (const auto keys = onlyKnown(message, {}, {u"type", u"event_id", u"audio"}); !keys)
        return std::unexpected(keys.error());
    const QString parameter = u"audio"_s;
    if (!message[parameter].isString())
        return wrongValue(parameter, u"a string"_s);
    const QString text = message[parameter].toString();
    const QByteArray base64 = text.toLatin1();
    const auto decoded = QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || !isCanonicalLength(base64) || QLatin1StringView{base64} != text)
        return fault(u"invalid_base64"_s, u"Invalid 'audio': not standard base64."_s, parameter);
    if (decoded.decoded.isEmpty())
        return fault(u"input_audio_buffer_append_empty"_s, u"Invalid 'audio': it holds no samples."_s, parameter);
    if (decoded.decoded.size() % 2 != 0)
        return fault(u"invalid_audio"_s, u"Invalid 'audio': half a sample at its end."_s, parameter);
    return AudioAppend{.pcm = decoded.decoded};
}

QByteArray frame(const QString& type, QJsonObject fields) {
    fields.insert(u"type"_s, type);
    return QJsonDocument{fields}.toJson(QJsonDocument::Compact);
}

}  // namespace

std::expected<ProviderRequest, ProviderFault> decodeProviderRequest(const QByteArray& bytes) {
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError)
        return fault(u"invalid_json"_s, u"Not JSON: %1."_s.arg(error.errorString()));
    if (!document.isObject())
        return fault(u"invalid_json"_s, u"Not a JSON object."_s);
    const auto message = document.object();
    if (!message[u"type"_s].isString())
        return wrongValue(u"type"_s, u"a string"_s);
    const QString type = message[u"type"_s].toString();
    if (const auto id = message[u"event_id"_s]; !id.isUndefined() && !id.isString())
        return wrongValue(u"event_id"_s, u"a string"_s);
    if (type == u"transcription_session.update"_s)
        return decodeUpdate(message);
    if (type == u"input_audio_buffer.append"_s)
        return decodeAppend(message);
    return fault(u"invalid_value"_s, u"Unknown type: '%1'."_s.arg(type.left(100)), u"type"_s);
}

namespace frames {

QByteArray error(const ProviderFault& fault) {
    QJsonObject object{{u"type"_s, u"invalid_request_error"_s}, {u"code"_s, fault.code}, {u"message"_s, fault.message}};
    if (!fault.parameter.isEmpty())
        object.insert(u"param"_s, fault.parameter);
    return frame(u"error"_s, {{u"error"_s, object}});
}

QByteArray sessionCreated(const QString& sessionId) {
    return frame(u"transcription_session.created"_s, {{u"session"_s, QJsonObject{{u"id"_s, sessionId}}}});
}

QByteArray sessionUpdated(const QString& sessionId, const SessionUpdate& update) {
    return frame(u"transcription_session.updated"_s,
                 {{u"session"_s, QJsonObject{{u"id"_s, sessionId},
                                             {u"input_audio_transcription"_s, QJsonObject{{u"model"_s, update.model}}},
                                             {u"turn_detection"_s,
                                              QJsonObject{{u"type"_s, u"server_vad"_s},
                                                          {u"threshold"_s, update.detection.threshold},
                                                          {u"silence_duration_ms"_s,
                                                           static_cast<qint64>(update.detection.silence.count())}}}}}});
}

QByteArray speechStarted(const QString& itemId, qint64 audioMilliseconds) {
    return frame(u"input_audio_buffer.speech_started"_s,
                 {{u"item_id"_s, itemId}, {u"audio_start_ms"_s, audioMilliseconds}});
}

QByteArray speechStopped(const QString& itemId, qint64 audioMilliseconds) {
    return frame(u"input_audio_buffer.speech_stopped"_s,
                 {{u"item_id"_s, itemId}, {u"audio_end_ms"_s, audioMilliseconds}});
}

QByteArray committed(const QString& itemId) {
    return frame(u"input_audio_buffer.committed"_s, {{u"item_id"_s, itemId}});
}

QByteArray delta(const QString& itemId, const QString& text) {
    return frame(u"conversation.item.input_audio_transcription.delta"_s,
                 {{u"item_id"_s, itemId}, {u"content_index"_s, 0}, {u"delta"_s, text}});
}

QByteArray completed(const QString& itemId, const QString& text) {
    return frame(u"conversation.item.input_audio_transcription.completed"_s,
                 {{u"item_id"_s, itemId}, {u"content_index"_s, 0}, {u"transcript"_s, text}});
}

}  // namespace frames

}  // namespace corvellan::sandbox
