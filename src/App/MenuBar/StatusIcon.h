#pragma once

#include <QColor>
#include <QIcon>
#include <QStringView>

namespace corvellan {

/// The colour of the status item's icon. Nobody tells a program how dark the desktop's bar is, so this is
/// one that stands out from black and from white alike.
[[nodiscard]] QColor statusIconColor();

/// A symbol as an icon for the desktop's bar, in all sizes that bars ask for. An unknown symbol is drawn as
/// `fallbackGlyph`. Needs the QGuiApplication.
[[nodiscard]] QIcon statusIcon(QStringView symbol);

}  // namespace corvellan
