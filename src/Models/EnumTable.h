#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <QString>
#include <string_view>

namespace corvellan {

/// Looks a wire word up in a table of rows that have `value` and `raw`. Empty for a word that this
/// client does not know; the whole message then fails to decode.
template <typename Row, std::size_t size>
[[nodiscard]] constexpr auto valueOf(const std::array<Row, size>& rows, std::string_view raw)
    -> std::optional<decltype(Row::value)> {
    for (const auto& row : rows)
        if (row.raw == raw)
            return row.value;
    return std::nullopt;
}

/// The row of a value. Tables hold every case, in the order of declaration.
template <typename Row, std::size_t size>
[[nodiscard]] constexpr const Row& rowOf(const std::array<Row, size>& rows, decltype(Row::value) value) {
    return rows[static_cast<std::size_t>(value)];
}

/// The texts of the tables are Latin-1 or UTF-8 literals.
[[nodiscard]] inline QString tableText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace corvellan
