#pragma once

#include <QIcon>

namespace corvellan {

/// The program's icon in every size that it was drawn in. Needs a `QGuiApplication`; main thread.
[[nodiscard]] QIcon applicationIcon();

}  // namespace corvellan
