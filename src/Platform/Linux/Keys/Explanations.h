#pragma once

#include <QString>

namespace corvellan {

/// What the settings say where the shortcut does not work.
/// \param reason a clause, without a full stop.
[[nodiscard]] QString shortcutUnavailable(const QString& reason);

}  // namespace corvellan
