#pragma once

#include <array>
#include <boost/json/monotonic_resource.hpp>
#include <boost/json/value.hpp>
#include <cstdint>
#include <expected>
#include <optional>
#include <QByteArrayView>
#include <string_view>
#include <variant>

#include "Protocol.h"

/// From bytes to a JSON value, for the decoders of this folder alone: it drags in Boost.JSON.
/// Total: any bytes give a value or a `DecodingError`.
namespace corvellan {

/// A larger message is refused unread.
inline constexpr qsizetype largestMessageBytes = 16 * 1024 * 1024;

/// Nesting beyond this is refused. The parser recurses, and ignored keys nest as deep as they like.
inline constexpr std::size_t deepestNesting = 1000;

using WholeNumber = std::variant<std::int64_t, std::uint64_t>;

/// The exact value of a JSON number, however it is written: "42", "42.0", "4.2e1". Empty for a
/// fraction, and for what needs more than 64 bits. Unsigned only above the signed range.
[[nodiscard]] std::optional<WholeNumber> wholeNumber(std::string_view number);

/// One parsed message. It copies what it needs out of the bytes.
///
/// Every whole number in it is an `int64` or `uint64`, and so a `double` is always a fraction or a
/// number beyond 64 bits.
class JsonDocument {
public:
    JsonDocument() = default;
    JsonDocument(const JsonDocument&) = delete;
    JsonDocument& operator=(const JsonDocument&) = delete;

    /// Parses; once. The root, which lives as long as this, or why there is none.
    [[nodiscard]] std::expected<const boost::json::value*, DecodingError> parse(QByteArrayView bytes);

private:
    // A usual message fits in here and costs no allocation.
    std::array<unsigned char, 16 * 1024> m_firstMemory;
    boost::json::monotonic_resource m_memory{m_firstMemory.data(), m_firstMemory.size()};
    std::optional<boost::json::value> m_root;
};

}  // namespace corvellan
