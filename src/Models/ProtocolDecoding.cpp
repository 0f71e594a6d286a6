#include "ProtocolFields.h"
#include "RecordCoding.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

// Enough of an unknown type to recognise it in a log.
constexpr qsizetype shownCharacters = 60;

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
    return decodeObject<Family>(json, [typeKey](FieldReader& reader, ValueReader& values, Family& message) {
        QString type;
        reader.field(typeKey, type);
        if (!values.failure() && !readMessage(type.toStdString(), reader, message.value))
            values.fail(DecodingError::Kind::unknownValue, FieldPath{nullptr, typeKey, {}}, type.left(shownCharacters));
    });
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
        case Kind::dataCorrupted: return QString{};
        }
        Q_UNREACHABLE();
    }();
    if (sentence.isEmpty())
        return detail;
    return detail.isEmpty() ? sentence : sentence + u": "_s + detail;
}

Decoded<MeddicScore> decodeMeddicScore(QByteArrayView json) {
    return decodeRecord<MeddicScore>(json);
}

Decoded<BuyerDisc> decodeBuyerDisc(QByteArrayView json) {
    return decodeRecord<BuyerDisc>(json);
}

Decoded<QStringList> decodeStrings(QByteArrayView json) {
    return decodeList<QStringList>(json);
}

Decoded<std::vector<std::optional<QString>>> decodeOptionalStrings(QByteArrayView json) {
    return decodeList<std::vector<std::optional<QString>>>(json);
}

Decoded<ClientMsg> ClientMsg::decode(QByteArrayView json) {
    return decodeMessage<ClientMsg>(wire::client::type, json);
}

Decoded<ServerMsg> ServerMsg::decode(QByteArrayView json) {
    return decodeMessage<ServerMsg>(wire::server::type, json);
}

}  // namespace corvellan
