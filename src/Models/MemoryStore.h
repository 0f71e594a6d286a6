#pragma once

#include <optional>
#include <QString>

/// The user's personal note, one plain text file in the home directory that any editor may change.
namespace corvellan::MemoryStore {

/// ".config/corvellan/memory.md" below the user's home directory.
[[nodiscard]] QString filePath();

/// A larger file counts as one that can't be read: cutting it would change the text, and it is hundreds of times
/// what is ever sent of a note.
inline constexpr qsizetype largestNoteBytes = 1024 * 1024;

/// How many characters of a note are edited and sent.
inline constexpr qsizetype noteLimit = 2000;

/// The text as it stands, a byte-order mark included; empty when the file does not read as UTF-8, holds only
/// white space, or is larger than `largestNoteBytes`.
[[nodiscard]] std::optional<QString> load();

/// As `load`, for a file anywhere.
[[nodiscard]] std::optional<QString> loadFrom(const QString& path);

/// As `loadFrom`, but white space alone counts as text, and so does an empty file.
[[nodiscard]] std::optional<QString> read(const QString& path);

}  // namespace corvellan::MemoryStore
