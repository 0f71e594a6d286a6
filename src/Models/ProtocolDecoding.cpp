#include "JsonReading.h"
#include "ProtocolFields.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

template <typename Record>
Decoded<Record> decodeRecord(QByteArrayView json) {
    JsonDocument document;
    const auto object = document.parse(json);
    if (!object)
        return std::unexpected(Error{object.error()});
    std::optional<DecodingError> failure;
    FieldReader reader{**object, failure};
    Record record;
    fields(reader, record);
    if (failure)
        return std::unexpected(Error{*failure});
    return record;
}

/// Reads the message whose word is `word` into `value`. False when no message of the family has it.
template <typename... Messages>
bool readMessage(std::string_view word, FieldReader& reader, std::variant<Messages...>& value) {
    const auto readIfNamed = [&]<typename Message>() {
        if (word != typeWord<Message>)
            return false;
        fields(reader, value.template emplace<Message>());
        return true;
    };
    return (readIfNamed.template operator()<Messages>() || ...);
}

template <typename Family>
Decoded<Family> decodeMessage(std::string_view typeKey, QByteArrayView json) {
    JsonDocument document;
    const auto object = document.parse(json);
    if (!object)
        return std::unexpected(Error{object.error()});
    std::optional<DecodingError> failure;
    FieldReader reader{**object, failure};
    QString type;
    reader.field(typeKey, type);
    if (failure)
        return std::unexpected(Error{*failure});
    Family message;
    const auto& word = (*object)->at(typeKey).as_string();
    if (!readMessage({word.data(), word.size()}, reader, message.value))
        failure =
            DecodingError{DecodingError::Kind::unknownValue, FieldPath{nullptr, typeKey, {}}.text(), type.left(60)};
    if (failure)
        return std::unexpected(Error{*failure});
    return message;
}

}  // namespace

QString DecodingError::errorDescription() const {
    const auto sentence = [this] {
        switch (kind) {
        case Kind::notJson: return u"The message is not valid JSON"_s;
        case Kind::missingField: return u"The field \"%1\" is missing"_s.arg(path);
        case Kind::wrongType:
            return path.isEmpty() ? u"The message has the wrong type"_s
                                  : u"The field \"%1\" has the wrong type"_s.arg(path);
        case Kind::outOfRange: return u"The number in the field \"%1\" does not fit"_s.arg(path);
        case Kind::unknownValue: return u"The field \"%1\" has an unknown value"_s.arg(path);
        }
        Q_UNREACHABLE();
    }();
    return detail.isEmpty() ? sentence : sentence + u": "_s + detail;
}

Decoded<MeddicScore> decodeMeddicScore(QByteArrayView json) {
    return decodeRecord<MeddicScore>(json);
}

Decoded<BuyerDisc> decodeBuyerDisc(QByteArrayView json) {
    return decodeRecord<BuyerDisc>(json);
}

Decoded<ClientMsg> ClientMsg::decode(QByteArrayView json) {
    return decodeMessage<ClientMsg>(wire::client::type, json);
}

Decoded<ServerMsg> ServerMsg::decode(QByteArrayView json) {
    return decodeMessage<ServerMsg>(wire::server::type, json);
}

}  // namespace corvellan
