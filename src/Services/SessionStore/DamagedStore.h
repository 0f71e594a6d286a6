#pragma once

#include <optional>
#include <QString>

#include "Base/Clock.h"

namespace corvellan {

/// Moves a damaged store, with the log and the shared memory beside it, out of the way of a new one:
/// "sessions.sqlite" becomes "sessions.damaged-20260302-100000.sqlite" (UTC) in the same folder, with
/// a further number when that exists. Nothing is ever overwritten.
///
/// The new path; empty when the file could not be moved.
[[nodiscard]] std::optional<QString> setAside(const QString& path, WallTime now);

}  // namespace corvellan
