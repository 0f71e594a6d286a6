#pragma once

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <concepts>
#include <optional>
#include <QString>
#include <QStringList>
#include <string_view>
#include <utility>
#include <vector>

#include "JsonParsing.h"
#include "Protocol.h"
#include "WireWords.h"

/// Strict reading of JSON into plain values, for the decoders of this folder alone: it drags in
/// Boost.JSON.
namespace corvellan {

/// Where in a message a value stands. Lives on the stack, beside the reading of that value.
struct FieldPath {
    const FieldPath* parent = nullptr;
    std::string_view key;
    std::optional<std::size_t> index;  ///< An element of `parent`, which is an array then.

    /// "state.disc.type", "goals[1]".
    [[nodiscard]] QString text() const;
};

/// Any JSON number, infinite when it is beyond a double; empty for everything else.
[[nodiscard]] std::optional<double> doubleIn(const boost::json::value& value);

/// Reads values of one message into plain ones. The first failure stays.
class ValueReader {
public:
    using Value = boost::json::value;

    [[nodiscard]] const std::optional<DecodingError>& failure() const { return m_failure; }

    void fail(DecodingError::Kind kind, const FieldPath& path, QString detail);

    void read(const Value& value, QString& text, const FieldPath& path);
    void read(const Value& value, bool& flag, const FieldPath& path);
    void read(const Value& value, double& number, const FieldPath& path);
    void read(const Value& value, QStringList& list, const FieldPath& path) { readList(value, list, path); }
    template <typename T>
    void read(const Value& value, std::vector<T>& list, const FieldPath& path) {
        readList(value, list, path);
    }

    template <std::integral T>
        requires(!std::same_as<T, bool>)
    void read(const Value& value, T& number, const FieldPath& path) {
        const auto* const signedNumber = value.if_int64();
        const auto* const unsignedNumber = value.if_uint64();
        if (signedNumber && std::in_range<T>(*signedNumber))
            number = static_cast<T>(*signedNumber);
        else if (unsignedNumber && std::in_range<T>(*unsignedNumber))
            number = static_cast<T>(*unsignedNumber);
        else
            failNumber(value, path);
    }

    template <typename Enumeration>
        requires std::is_enum_v<Enumeration>
    void read(const Value& value, Enumeration& result, const FieldPath& path) {
        const auto* const word = value.if_string();
        if (!word)
            return failType(value, "a string", path);
        if (const auto known = valueOf(*wireRows<Enumeration>, std::string_view{word->data(), word->size()}))
            result = *known;
        else
            failUnknownWord(*word, path);
    }

    /// A record that ProtocolFields.h tells the fields of, or a value that a function `readWhole` reads.
    template <typename Record>
        requires std::is_class_v<Record>
    void read(const Value& value, Record& record, const FieldPath& path);

private:
    void failType(const Value& found, const char* expected, const FieldPath& path);
    void failNumber(const Value& found, const FieldPath& path);
    void failUnknownWord(const boost::json::string& word, const FieldPath& path);

    /// The elements of a list of strings, of enumerations, or of optional values, which may be null.
    template <typename List>
    void readList(const Value& value, List& list, const FieldPath& path) {
        const auto* const array = value.if_array();
        if (!array)
            return failType(value, "an array", path);
        list.clear();
        list.reserve(static_cast<decltype(list.size())>(array->size()));
        std::size_t index = 0;
        for (const auto& element : *array) {
            readElement(element, list.emplace_back(), FieldPath{&path, {}, index++});
            if (m_failure)
                return;
        }
    }
    template <typename T>
    void readElement(const Value& value, T& element, const FieldPath& path) {
        read(value, element, path);
    }
    template <typename T>
    void readElement(const Value& value, std::optional<T>& element, const FieldPath& path) {
        if (!value.is_null())
            read(value, element.emplace(), path);
    }

    std::optional<DecodingError> m_failure;
};

/// Reads the fields of one object (see ProtocolFields.h). After a failure nothing more is read.
class FieldReader {
public:
    FieldReader(const boost::json::object& object, ValueReader& values, const FieldPath* path = nullptr)
        : m_object(object),
          m_values(values),
          m_path(path) {}

    template <typename T>
    void field(std::string_view key, T& value) {
        if (m_values.failure())
            return;
        const FieldPath path{m_path, key, {}};
        if (const auto* const found = m_object.if_contains(key))
            m_values.read(*found, value, path);
        else
            m_values.fail(DecodingError::Kind::missingField, path, {});
    }

    template <typename T>
    void field(std::string_view key, std::optional<T>& value) {
        value.reset();
        if (const auto* const found = present(key))
            m_values.read(*found, value.emplace(), FieldPath{m_path, key, {}});
    }

    template <typename T>
    void defaulted(std::string_view key, T& value) {
        if (const auto* const found = present(key))
            m_values.read(*found, value, FieldPath{m_path, key, {}});
    }

    template <typename T>
    void writtenOnly(std::string_view, T&) {}

private:
    /// Null when the value is missing or null, and after a failure.
    [[nodiscard]] const boost::json::value* present(std::string_view key) const {
        const auto* const found = m_values.failure() ? nullptr : m_object.if_contains(key);
        return found && !found->is_null() ? found : nullptr;
    }

    const boost::json::object& m_object;
    ValueReader& m_values;
    const FieldPath* m_path;
};

template <typename Record>
    requires std::is_class_v<Record>
void ValueReader::read(const Value& value, Record& record, const FieldPath& path) {
    if constexpr (requires { readWhole(*this, value, record, path); }) {
        readWhole(*this, value, record, path);
    } else {
        const auto* const object = value.if_object();
        if (!object)
            return failType(value, "an object", path);
        FieldReader reader{*object, *this, &path};
        fields(reader, record);
    }
}

}  // namespace corvellan
