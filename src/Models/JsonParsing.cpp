#include "JsonParsing.h"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value_stack.hpp>
#include <charconv>
#include <exception>
#include <limits>
#include <span>
#include <string>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

namespace json = boost::json;

/// The nearest value. The parser's own may be one step off; empty beyond the range, where it knows the way.
std::optional<double> nearestDouble(std::string_view text) {
    double number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc{})
        return std::nullopt;
    return number;
}

/// Builds the value while the parser reads. It differs from the library's own builder in one thing:
/// that one turns every number with a point or an exponent into a `double`, and integers beyond 64
/// bits as well, so that digits get lost and a fraction can pass for an integer.
struct ExactBuilder {
    // Names and signatures are those that `basic_parser` asks for.
    static constexpr std::size_t max_object_size = json::object::max_size();
    static constexpr std::size_t max_array_size = json::array::max_size();
    static constexpr std::size_t max_key_size = json::string::max_size();
    static constexpr std::size_t max_string_size = json::string::max_size();

    ExactBuilder(json::storage_ptr memory, std::span<unsigned char> temporary)
        : values({}, temporary.data(), temporary.size()) {
        values.reset(std::move(memory));
    }

    bool on_document_begin(json::error_code&) { return true; }
    bool on_document_end(json::error_code&) { return true; }
    bool on_object_begin(json::error_code&) { return true; }
    bool on_object_end(std::size_t size, json::error_code&) {
        values.push_object(size);
        return true;
    }
    bool on_array_begin(json::error_code&) { return true; }
    bool on_array_end(std::size_t size, json::error_code&) {
        values.push_array(size);
        return true;
    }
    bool on_key_part(std::string_view part, std::size_t, json::error_code&) {
        values.push_chars(part);
        return true;
    }
    bool on_key(std::string_view rest, std::size_t, json::error_code&) {
        values.push_key(rest);
        return true;
    }
    bool on_string_part(std::string_view part, std::size_t, json::error_code&) {
        values.push_chars(part);
        return true;
    }
    bool on_string(std::string_view rest, std::size_t, json::error_code&) {
        values.push_string(rest);
        return true;
    }
    bool on_number_part(std::string_view, json::error_code&) { return true; }
    bool on_int64(std::int64_t number, std::string_view, json::error_code&) {
        values.push_int64(number);
        return true;
    }
    bool on_uint64(std::uint64_t number, std::string_view, json::error_code&) {
        values.push_uint64(number);
        return true;
    }
    // The text is whole, since all bytes are handed over at once.
    bool on_double(double number, std::string_view text, json::error_code&) {
        const auto whole = wholeNumber(text);
        if (!whole)
            values.push_double(nearestDouble(text).value_or(number));
        else if (const auto* const value = std::get_if<std::int64_t>(&*whole))
            values.push_int64(*value);
        else
            values.push_uint64(std::get<std::uint64_t>(*whole));
        return true;
    }
    bool on_bool(bool value, json::error_code&) {
        values.push_bool(value);
        return true;
    }
    bool on_null(json::error_code&) {
        values.push_null();
        return true;
    }
    bool on_comment_part(std::string_view, json::error_code&) { return true; }
    bool on_comment(std::string_view, json::error_code&) { return true; }

    json::value_stack values;
};

DecodingError notJson(QString detail) {
    return {DecodingError::Kind::notJson, {}, std::move(detail)};
}

}  // namespace

std::optional<WholeNumber> wholeNumber(std::string_view number) {
    const bool isNegative = number.starts_with('-');
    if (isNegative)
        number.remove_prefix(1);
    const auto exponentAt = number.find_first_of("eE");
    auto mantissa = number.substr(0, exponentAt);
    const auto pointAt = mantissa.find('.');
    std::string digits{mantissa.substr(0, pointAt)};
    if (pointAt != std::string_view::npos)
        digits += mantissa.substr(pointAt + 1);
    if (digits.find_first_not_of('0') == std::string::npos)
        return std::int64_t{0};

    std::int64_t exponent = 0;
    if (exponentAt != std::string_view::npos) {
        auto text = number.substr(exponentAt + 1);
        if (text.starts_with('+'))
            text.remove_prefix(1);
        const auto read = std::from_chars(text.data(), text.data() + text.size(), exponent);
        // So far from 1 it is a fraction or needs more than 64 bits.
        if (read.ec != std::errc{})
            return std::nullopt;
    }
    const auto lastDigit = digits.find_last_not_of('0');
    const auto wholeDigits = static_cast<std::int64_t>(pointAt == std::string_view::npos ? mantissa.size() : pointAt);
    // How many zeros follow the last digit that is none; below zero it stands behind the point.
    constexpr std::int64_t farFromOne = 1'000'000'000;
    if (exponent < -farFromOne || exponent > farFromOne)
        return std::nullopt;
    const auto zeros = wholeDigits + exponent - static_cast<std::int64_t>(lastDigit) - 1;
    constexpr std::int64_t mostDigits = std::numeric_limits<std::uint64_t>::digits10 + 1;
    if (zeros < 0 || zeros > mostDigits)
        return std::nullopt;
    digits.resize(lastDigit + 1);
    digits.append(static_cast<std::size_t>(zeros), '0');

    std::uint64_t size = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), size).ec != std::errc{})
        return std::nullopt;
    constexpr auto largestSigned = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (!isNegative)
        return size <= largestSigned ? WholeNumber{static_cast<std::int64_t>(size)} : WholeNumber{size};
    if (size > largestSigned + 1)
        return std::nullopt;
    return static_cast<std::int64_t>(0 - size);
}

std::expected<const json::value*, DecodingError> JsonDocument::parse(QByteArrayView bytes) {
    if (bytes.size() > largestMessageBytes)
        return std::unexpected(notJson(u"the message is too large"_s));
    try {
        std::array<unsigned char, 8 * 1024> temporary;
        json::parse_options options;
        options.max_depth = deepestNesting;
        json::basic_parser<ExactBuilder> parser{options, json::storage_ptr{&m_memory}, std::span{temporary}};
        json::error_code error;
        const auto size = static_cast<std::size_t>(bytes.size());
        const auto read = parser.write_some(false, bytes.data(), size, error);
        if (!error && read < size)
            error = json::make_error_code(json::error::extra_data);
        if (error)
            return std::unexpected(notJson(QString::fromStdString(error.message())));
        m_root.emplace(parser.handler().values.release());
    } catch (const std::exception& exception) {
        return std::unexpected(notJson(QString::fromUtf8(exception.what())));
    }
    return &*m_root;
}

}  // namespace corvellan
