#pragma once

#include <optional>
#include <QString>
#include <QStringList>

/// The tables of a note. Pure functions, callable from any thread. What they are given is escaped already.
namespace corvellan::markdown {

/// `text` with every run of table rows turned into one table on a line of its own. A row holds "|" and either
/// starts with it or has one between blanks.
[[nodiscard]] QString convertTables(const QString& text);

/// The table of these rows, the first of which is its head. Rows that contain "---" are left out, and extra cells
/// are joined into the last one. Empty when no row is left.
[[nodiscard]] QString renderTable(const QStringList& lines);

/// The cells of a row, trimmed of blanks and tabs; at least one.
///
/// \param maxColumns at least 1: the cells from this one on are joined with ", ". Absent means no limit.
[[nodiscard]] QStringList splitTableRow(const QString& line, std::optional<qsizetype> maxColumns = std::nullopt);

}  // namespace corvellan::markdown
