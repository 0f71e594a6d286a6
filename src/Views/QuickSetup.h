#pragma once

namespace corvellan {

/// Chooses the software renderer and the plain control style, and makes this folder's QML types known.
/// Call once in `main`, after the QGuiApplication and before the first window.
void prepareQuick();

/// Where QML files that are built into the program lie; every engine needs it as an import path.
inline constexpr char qmlImportPath[] = ":/qt/qml";

}  // namespace corvellan
