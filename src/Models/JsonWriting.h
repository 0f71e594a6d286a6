#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <concepts>
#include <optional>
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <string_view>
#include <vector>

#include "WireWords.h"

/// Writing of plain values as JSON, for the encoders of this folder alone: it drags in Boost.JSON.
namespace corvellan {

/// Writes the fields of one object in the order of the calls (see ProtocolFields.h).
class FieldWriter {
public:
    explicit FieldWriter(boost::json::object& object) : m_object(object) {}

    template <typename T>
    void field(std::string_view key, const T& value) {
        m_object.emplace(key, json(value));
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
    // Made with parentheses throughout: in braces, a value would be an array of its arguments.
    using Value = boost::json::value;

    [[nodiscard]] Value json(const QString& text) const {
        const QByteArray bytes = text.toUtf8();
        return Value(std::string_view{bytes.constData(), static_cast<std::size_t>(bytes.size())}, m_object.storage());
    }
    template <typename T>
        requires std::integral<T>
    [[nodiscard]] Value json(T number) const {
        return Value(number, m_object.storage());
    }
    template <typename Enumeration>
        requires std::is_enum_v<Enumeration>
    [[nodiscard]] Value json(Enumeration value) const {
        return Value(rawValue(value), m_object.storage());
    }
    template <typename Record>
        requires std::is_class_v<Record>
    [[nodiscard]] Value json(const Record& record) const {
        boost::json::object object(m_object.storage());
        FieldWriter writer{object};
        fields(writer, record);
        return Value(std::move(object));
    }
    /// The one place where a null is written: an element that is absent.
    template <typename T>
    [[nodiscard]] Value json(const std::optional<T>& element) const {
        return element ? json(*element) : Value(nullptr, m_object.storage());
    }
    template <typename List>
    [[nodiscard]] Value jsonList(const List& list) const {
        boost::json::array array(m_object.storage());
        array.reserve(static_cast<std::size_t>(list.size()));
        for (const auto& element : list)
            array.emplace_back(json(element));
        return Value(std::move(array));
    }
    [[nodiscard]] Value json(const QStringList& list) const { return jsonList(list); }
    template <typename T>
    [[nodiscard]] Value json(const std::vector<T>& list) const {
        return jsonList(list);
    }

    boost::json::object& m_object;
};

[[nodiscard]] QByteArray serialized(const boost::json::value& value);

}  // namespace corvellan
