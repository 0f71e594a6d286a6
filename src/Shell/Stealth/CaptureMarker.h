#pragma once

#include <array>
#include <cstdint>
#include <QColor>
#include <QImage>
#include <vector>

namespace corvellan {

/// A code of random colours that no screen shows by chance, and the search for it in a picture. A value.
struct CaptureMarker {
    static constexpr int columns = 16;
    static constexpr int rows = 8;
    /// Side of a cell in the window's own pixels. The whole code fits the lowest layout of the panel.
    static constexpr int cellSize = 4;

    /// Row by row; of each the lowest three bits are red, green and blue, full or none.
    std::array<std::uint8_t, static_cast<std::size_t>(columns* rows)> cells{};

    /// A new one, never seen before.
    [[nodiscard]] static CaptureMarker random();

    /// Row by row, as they are to be painted.
    [[nodiscard]] std::vector<QColor> colors() const;

    /// Whether the picture shows the code anywhere: at its own size, or enlarged up to four times or reduced
    /// to three quarters, blurred and tinted as scaling and colour profiles do. Takes up to a few seconds for
    /// a large picture. Any thread.
    [[nodiscard]] bool isIn(const QImage& picture) const;

    bool operator==(const CaptureMarker&) const = default;
};

/// Whether a picture shows nothing at all, as where capturing was silently refused.
[[nodiscard]] bool isBlank(const QImage& picture);

}  // namespace corvellan
