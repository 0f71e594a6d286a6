#pragma once

#include <optional>
#include <QByteArray>
#include <QHash>
#include <QString>

namespace corvellan::sandbox {

/// The fields of a form or of a query, decoded.
using FormFields = QHash<QString, QString>;

/// Reads "a=1&b=2" as browsers send forms: "+" is a blank, "%41" an A. Empty for a field that comes twice, a
/// broken escape, text that is no UTF-8, and for more than `longestForm` bytes.
[[nodiscard]] std::optional<FormFields> parseForm(const QByteArray& bytes);

inline constexpr qsizetype longestForm = 64 * 1024;

}  // namespace corvellan::sandbox
