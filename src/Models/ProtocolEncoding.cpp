#include <array>
#include <boost/json/monotonic_resource.hpp>
#include <exception>

#include "JsonWriting.h"
#include "ProtocolFields.h"

namespace corvellan {

namespace {

/// Memory for one message on the stack; what does not fit goes to the heap.
class MessageMemory {
public:
    [[nodiscard]] boost::json::storage_ptr storage() { return &m_memory; }

private:
    std::array<unsigned char, 8 * 1024> m_firstMemory;
    boost::json::monotonic_resource m_memory{m_firstMemory.data(), m_firstMemory.size()};
};

template <typename T>
QByteArray encodeValue(const T& value) {
    MessageMemory memory;
    return serialized(ValueWriter{memory.storage()}.json(value));
}

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
