#include <exception>

#include "JsonWriting.h"
#include "ProtocolFields.h"

namespace corvellan {

namespace {

template <typename Family>
std::expected<QByteArray, Error> encodeMessage(std::string_view typeKey, const Family& family) {
    try {
        MessageMemory memory;
        boost::json::value root(boost::json::object_kind, memory.storage());
        auto& object = root.get_object();
        std::visit(
            [&]<typename Message>(const Message& message) {
                object.emplace(typeKey, typeWord<Message>);
                FieldWriter writer{object};
                fields(writer, message);
            },
            family.value);
        return serialized(root);
    } catch (const std::exception& exception) {
        return std::unexpected(Error{EncodingError{QString::fromUtf8(exception.what())}});
    }
}

}  // namespace

QString EncodingError::errorDescription() const {
    return detail;
}

QByteArray encode(const MeddicScore& score) {
    return encodeValue(score);
}

QByteArray encode(const BuyerDisc& disc) {
    return encodeValue(disc);
}

QByteArray encode(const QStringList& list) {
    return encodeValue(list);
}

QByteArray encode(const std::vector<std::optional<QString>>& list) {
    return encodeValue(list);
}

std::expected<QByteArray, Error> ClientMsg::encode() const {
    return encodeMessage(wire::client::type, *this);
}

std::expected<QByteArray, Error> ServerMsg::encode() const {
    return encodeMessage(wire::server::type, *this);
}

}  // namespace corvellan
