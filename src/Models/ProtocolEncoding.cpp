#include <array>
#include <boost/json/monotonic_resource.hpp>
#include <exception>

#include "JsonWriting.h"
#include "ProtocolFields.h"

namespace corvellan {

namespace {

/// Builds one object with `write` and gives its bytes.
template <typename Write>
QByteArray writtenObject(Write write) {
    std::array<unsigned char, 8 * 1024> firstMemory;
    boost::json::monotonic_resource memory{firstMemory.data(), firstMemory.size()};
    boost::json::value root(boost::json::object_kind, &memory);
    write(root.get_object());
    return serialized(root);
}

template <typename Record>
QByteArray encodeRecord(const Record& record) {
    return writtenObject([&](boost::json::object& object) {
        FieldWriter writer{object};
        fields(writer, record);
    });
}

template <typename Value>
std::expected<QByteArray, Error> encodeMessage(std::string_view typeKey, const Value& value) {
    try {
        return writtenObject([&](boost::json::object& object) {
            std::visit(
                [&]<typename Message>(const Message& message) {
                    object.emplace(typeKey, typeWord<Message>);
                    FieldWriter writer{object};
                    fields(writer, message);
                },
                value);
        });
    } catch (const std::exception& exception) {
        return std::unexpected(Error{EncodingError{QString::fromUtf8(exception.what())}});
    }
}

}  // namespace

QString EncodingError::errorDescription() const {
    return detail;
}

QByteArray encode(const MeddicScore& score) {
    return encodeRecord(score);
}

QByteArray encode(const BuyerDisc& disc) {
    return encodeRecord(disc);
}

std::expected<QByteArray, Error> ClientMsg::encode() const {
    return encodeMessage(wire::client::type, value);
}

std::expected<QByteArray, Error> ServerMsg::encode() const {
    return encodeMessage(wire::server::type, value);
}

}  // namespace corvellan
