#pragma once

#include <optional>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QStringView>

/// Sizes and places of the panel, in logical pixels with y growing downwards. Pure functions.
namespace corvellan::panel {

inline constexpr QSize idleSize{680, 520};
inline constexpr QSize idleMinimumSize{520, 400};
inline constexpr QSize idleMaximumSize{900, 700};
inline constexpr QSize callSize{700, 350};
inline constexpr QSize coachSize{500, 400};
inline constexpr QSize miniSize{600, 36};

/// The size in a call: that of the mode ("mini", "coach", anything else), times the text scale.
///
/// \param storedFontScale as the preferences hold it; absent or below 1 counts as 1.
[[nodiscard]] QSize sessionSize(QStringView mode, std::optional<double> storedFontScale);

/// `origin`, moved so that a window of `size` lies inside `available`. Where it doesn't fit, the left
/// and the top edge stay in view.
[[nodiscard]] QPoint clampedOrigin(QPoint origin, QSize size, QRect available);

/// Where a window of `size` goes that keeps the horizontal centre and the top edge of `frame`.
///
/// \param available the free area of the window's screen; absent when there is no screen.
[[nodiscard]] QPoint centeredOrigin(QSize size, QRect frame, std::optional<QRect> available);

/// Where a window of `size` stands in the middle of `available`.
[[nodiscard]] QPoint middleOrigin(QSize size, QRect available);

}  // namespace corvellan::panel
