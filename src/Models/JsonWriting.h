#pragma once

#include <array>
#include <boost/json/array.hpp>
#include <boost/json/monotonic_resource.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <cmath>
#include <concepts>
#include <optional>
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <string_view>
#include <utility>
#include <vector>

#include "WireWords.h"

/// Writing of plain values as JSON, for the encoders of this folder alone: it drags in Boost.JSON.
namespace corvellan {

/// Makes JSON values in one memory, that of the object or array that they go into.
/// Values are made with parentheses throughout: in braces, a value would be an array of its arguments.
class ValueWriter {
public:
    using Value = boost::json::value;

    explicit ValueWriter(boost::json::storage_ptr memory) : m_memory(std::move(memory)) {}

    [[nodiscard]] Value json(const QString& text) const {
        const QByteArray bytes = text.toUtf8();
        return Value(std::string_view{bytes.constData(), static_cast<std::size_t>(bytes.size())}, m_memory);
    }
    template <typename T>
        requires std::integral<T>
    [[nodiscard]] Value json(T number) const {
        return Value(number, m_memory);
    }
    /// A null for what no JSON number can tell.
    [[nodiscard]] Value json(double number) const {
        return std::isfinite(number) ? Value(number, m_memory) : Value(nullptr, m_memory);
    }
    template <typename Enumeration>
        requires std::is_enum_v<Enumeration>
    [[nodiscard]] Value json(Enumeration value) const {
        return Value(rawValue(value), m_memory);
    }
    [[nodiscard]] Value json(const QStringList& list) const { return jsonList(list); }
    template <typename T>
    [[nodiscard]] Value json(const std::vector<T>& list) const {
        return jsonList(list);
    }
    /// A record that ProtocolFields.h tells the fields of, or a value that a function `writeWhole` writes.
    template <typename Record>
        requires std::is_class_v<Record>
    [[nodiscard]] Value json(const Record& record) const;

private:
    template <typename List>
    [[nodiscard]] Value jsonList(const List& list) const {
        boost::json::array array(m_memory);
        array.reserve(static_cast<std::size_t>(list.size()));
        for (const auto& element : list)
            array.emplace_back(jsonElement(element));
        return Value(std::move(array));
    }
    template <typename T>
    [[nodiscard]] Value jsonElement(const T& element) const {
        return json(element);
    }
    /// The one place where a null is written: an element that is absent.
    template <typename T>
    [[nodiscard]] Value jsonElement(const std::optional<T>& element) const {
        return element ? json(*element) : Value(nullptr, m_memory);
    }

    boost::json::storage_ptr m_memory;
};

/// Writes the fields of one object in the order of the calls (see ProtocolFields.h).
class FieldWriter {
public:
    explicit FieldWriter(boost::json::object& object) : m_object(object), m_values(object.storage()) {}

    template <typename T>
    void field(std::string_view key, const T& value) {
        m_object.emplace(key, m_values.json(value));
    }
    template <typename T>
    void field(std::string_view key, const std::optional<T>& value) {
        if (value)
            field(key, *value);
    }
    template <typename T>
    void defaulted(std::string_view key, const T& value) {
        field(key, value);
    }
    template <typename T>
    void writtenOnly(std::string_view key, const T& value) {
        field(key, value);
    }

private:
    boost::json::object& m_object;
    ValueWriter m_values;
};

template <typename Record>
    requires std::is_class_v<Record>
boost::json::value ValueWriter::json(const Record& record) const {
    if constexpr (requires { writeWhole(*this, record); }) {
        return writeWhole(*this, record);
    } else {
        boost::json::object object(m_memory);
        FieldWriter writer{object};
        fields(writer, record);
        return Value(std::move(object));
    }
}

[[nodiscard]] QByteArray serialized(const boost::json::value& value);

/// Memory for one message on the stack; what does not fit goes to the heap.
class MessageMemory {
public:
    [[nodiscard]] boost::json::storage_ptr storage() { return &m_memory; }

private:
    std::array<unsigned char, 8 * 1024> m_firstMemory;
    boost::json::monotonic_resource m_memory{m_firstMemory.data(), m_firstMemory.size()};
};

/// Any value that a `ValueWriter` knows, as JSON.
template <typename T>
QByteArray encodeValue(const T& value) {
    MessageMemory memory;
    return serialized(ValueWriter{memory.storage()}.json(value));
}

}  // namespace corvellan
