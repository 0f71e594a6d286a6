#include "CaptureMarker.h"

#include <algorithm>
#include <cstring>
#include <QRandomGenerator>

namespace corvellan {

namespace {

using Class = std::uint8_t;

/// Matches no cell: a colour that is neither full nor none in some part.
constexpr Class between = 0xff;
constexpr int darkest = 110;
constexpr int brightest = 146;

Class classOf(QRgb pixel) {
    Class result = 0;
    for (const int part : {qRed(pixel), qGreen(pixel), qBlue(pixel)}) {
        if (part > darkest && part < brightest)
            return between;
        result = static_cast<Class>(result << 1 | (part >= brightest ? 1 : 0));
    }
    return result;
}

/// The picture, each pixel by the colour that it comes closest to.
struct ClassMap {
    explicit ClassMap(const QImage& picture)
        : width(picture.width()),
          height(picture.height()),
          classes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
        const QImage plain = picture.convertToFormat(QImage::Format_RGB32);
        auto next = classes.begin();
        for (int y = 0; y < height; ++y) {
            const auto* const line = reinterpret_cast<const QRgb*>(plain.constScanLine(y));
            next = std::transform(line, line + width, next, classOf);
        }
    }

    [[nodiscard]] const Class* row(int y) const {
        return classes.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }

    int width;
    int height;
    std::vector<Class> classes;
};

/// Looks for one code with cells of one size, in pixels of the picture.
class Search {
public:
    Search(const CaptureMarker& marker, const ClassMap& map, double cell) : m_marker(marker), m_map(map) {
        for (int i = 0; i < CaptureMarker::columns; ++i)
            m_middles[static_cast<std::size_t>(i)] = static_cast<int>((i + 0.5) * cell);
        m_width = static_cast<int>(CaptureMarker::columns * cell);
        m_height = static_cast<int>(CaptureMarker::rows * cell);
        // Half a cell off still meets the right cell, or its edge.
        m_step = std::max(1, static_cast<int>(cell / 2));
    }

    [[nodiscard]] bool finds() const {
        for (int y = 0; y + m_height <= m_map.height; y += m_step)
            for (int x = 0; x + m_width <= m_map.width; x += m_step)
                if (isAt(x, y))
                    return true;
        return false;
    }

private:
    [[nodiscard]] bool isAt(int x, int y) const {
        // A seventh may be spoilt by blur; by chance so many fit once in more pictures than were ever taken.
        constexpr int spoiltAtMost = CaptureMarker::columns * CaptureMarker::rows / 7;
        int spoilt = 0;
        auto cell = m_marker.cells.begin();
        for (int row = 0; row < CaptureMarker::rows; ++row) {
            const Class* const line = m_map.row(y + m_middles[static_cast<std::size_t>(row)]) + x;
            for (const int middle : m_middles)
                spoilt += line[middle] == *cell++ ? 0 : 1;
            if (spoilt > spoiltAtMost || (row == 0 && spoilt > CaptureMarker::columns / 3))
                return false;
        }
        return true;
    }

    const CaptureMarker& m_marker;
    const ClassMap& m_map;
    std::array<int, CaptureMarker::columns> m_middles{};
    int m_width = 0;
    int m_height = 0;
    int m_step = 1;
};

}  // namespace

CaptureMarker CaptureMarker::random() {
    CaptureMarker marker;
    constexpr int colourCount = 8;
    for (std::uint8_t& cell : marker.cells)
        cell = static_cast<std::uint8_t>(QRandomGenerator::system()->bounded(colourCount));
    return marker;
}

std::vector<QColor> CaptureMarker::colors() const {
    constexpr int full = 255;
    std::vector<QColor> colors;
    for (const std::uint8_t cell : cells)
        colors.emplace_back((cell & 4U) != 0 ? full : 0, (cell & 2U) != 0 ? full : 0, (cell & 1U) != 0 ? full : 0);
    return colors;
}

bool CaptureMarker::isIn(const QImage& picture) const {
    const ClassMap map{picture};
    constexpr double smallest = 0.75;
    constexpr double largest = 4.0;
    // Over sixteen cells a step of this size is off by less than half a cell at the last one.
    constexpr double stepFactor = 1.03;
    // Whole multiples first: most screens have one of them.
    for (const double scale : {1.0, 2.0, 3.0, 1.5, 1.25, 1.75})
        if (Search{*this, map, cellSize * scale}.finds())
            return true;
    for (double scale = smallest; scale <= largest; scale *= stepFactor)
        if (Search{*this, map, cellSize * scale}.finds())
            return true;
    return false;
}

bool isBlank(const QImage& picture) {
    const QImage plain = picture.convertToFormat(QImage::Format_RGB32);
    if (plain.isNull())
        return true;
    const QRgb first = plain.pixel(0, 0);
    for (int y = 0; y < plain.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(plain.constScanLine(y));
        if (!std::all_of(line, line + plain.width(), [first](QRgb pixel) { return pixel == first; }))
            return false;
    }
    return true;
}

}  // namespace corvellan
