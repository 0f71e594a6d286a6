#include "PanelGeometry.h"

#include <algorithm>
#include <cmath>
#include <QLatin1StringView>

namespace corvellan::panel {

namespace {

// A damaged preference must not ask for a window of a million pixels.
constexpr double maximumScale = 8.0;

}  // namespace

QSize sessionSize(QStringView mode, std::optional<double> storedFontScale) {
    const double stored = storedFontScale.value_or(0.0);
    const double scale = stored > 1.0 ? std::min(stored, maximumScale) : 1.0;
    QSize base = callSize;
    if (mode == QLatin1StringView{"mini"})
        base = miniSize;
    else if (mode == QLatin1StringView{"coach"})
        base = coachSize;
    return {static_cast<int>(std::lround(base.width() * scale)), static_cast<int>(std::lround(base.height() * scale))};
}

QPoint clampedOrigin(QPoint origin, QSize size, QRect available) {
    const int right = available.x() + available.width() - size.width();
    const int bottom = available.y() + available.height() - size.height();
    return {std::max(available.x(), std::min(right, origin.x())),
            std::max(available.y(), std::min(bottom, origin.y()))};
}

QPoint centeredOrigin(QSize size, QRect frame, std::optional<QRect> available) {
    const QPoint origin{frame.x() + (frame.width() - size.width()) / 2, frame.y()};
    return available ? clampedOrigin(origin, size, *available) : origin;
}

QPoint middleOrigin(QSize size, QRect available) {
    const QPoint origin{available.x() + (available.width() - size.width()) / 2,
                        available.y() + (available.height() - size.height()) / 2};
    return clampedOrigin(origin, size, available);
}

}  // namespace corvellan::panel
