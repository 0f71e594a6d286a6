#pragma once

#include <optional>
#include <QString>

/// The user's personal note, one plain text file in the home directory that any editor may change.
namespace corvellan::MemoryStore {

/// ".config/corvellan/memory.md" below the user's home directory.
[[nodiscard]] QString filePath();

/// The text as it stands; empty when the file does not read as UTF-8 or holds only white space.
[[nodiscard]] std::optional<QString> load();

/// As `load`, for a file anywhere.
[[nodiscard]] std::optional<QString> loadFrom(const QString& path);

}  // namespace corvellan::MemoryStore
