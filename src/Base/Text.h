#pragma once

#include <optional>
#include <QString>

/// Text as people count and trim it. "Characters" are grapheme clusters, by ICU's break iterator.
/// Pure functions, callable from any thread.
namespace corvellan::text {

/// The number of characters.
[[nodiscard]] qsizetype count(QStringView text);

/// The first `characters` characters, or the whole text if it has fewer.
[[nodiscard]] QString prefix(QStringView text, qsizetype characters);

/// Upper-cases the first character and keeps the rest exactly as it is.
[[nodiscard]] QString upperFirst(QStringView text);

/// Without white space and newlines (every Unicode space and line separator) at both ends.
[[nodiscard]] QString trimmed(QStringView text);

/// Nothing is left after trimming blanks (U+0020) and tabs (U+0009) alone.
[[nodiscard]] bool isBlank(QStringView text);

/// A decimal number from end to end, as "12.5", "-3e2", "+.5": no blanks, no "inf", nothing beyond a double.
[[nodiscard]] std::optional<double> number(QStringView text);

/// As "%f" and its kin in the C locale: `value` with `decimals` digits behind the point, exact ties to even.
[[nodiscard]] QString fixed(double value, int decimals);

}  // namespace corvellan::text
