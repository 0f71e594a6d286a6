#include "FrameHash.h"

#include <algorithm>
#include <array>
#include <bit>
#include <span>

namespace corvellan {

namespace {

constexpr int columns = 9;
constexpr int rows = 8;

/// Sums of weighted channel values.
struct Light {
    std::uint64_t red = 0;
    std::uint64_t green = 0;
    std::uint64_t blue = 0;

    void add(const Light& other, std::uint64_t weight) {
        red += other.red * weight;
        green += other.green * weight;
        blue += other.blue * weight;
    }
};

using Strip = std::array<Light, columns>;

Light lightOf(std::span<const QRgb> pixels) {
    // Narrow counters add up several pixels an instruction; so many pixels fit.
    constexpr std::size_t mostAtOnce = 1U << 16U;
    Light light;
    while (!pixels.empty()) {
        const auto part = pixels.first(std::min(pixels.size(), mostAtOnce));
        std::uint32_t red = 0;
        std::uint32_t green = 0;
        std::uint32_t blue = 0;
        for (const QRgb pixel : part) {
            red += (pixel >> 16U) & 0xFFU;
            green += (pixel >> 8U) & 0xFFU;
            blue += pixel & 0xFFU;
        }
        light.add({red, green, blue}, 1);
        pixels = pixels.subspan(part.size());
    }
    return light;
}

/// One line of the picture, shared out among the columns. A pixel is as wide as there are columns and a column
/// as wide as there are pixels, so that all parts are whole numbers.
void addLine(Strip& strip, std::span<const QRgb> line) {
    const auto width = line.size();
    for (std::size_t column = 0; column < columns; ++column) {
        const auto begin = column * width;
        const auto end = begin + width;
        const auto first = begin / columns;
        const auto last = (end - 1) / columns;
        if (first == last) {
            strip.at(column).add(lightOf(line.subspan(first, 1)), width);
            continue;
        }
        strip.at(column).add(lightOf(line.subspan(first, 1)), (first + 1) * columns - begin);
        strip.at(column).add(lightOf(line.subspan(first + 1, last - first - 1)), columns);
        strip.at(column).add(lightOf(line.subspan(last, 1)), end - last * columns);
    }
}

/// 0 to 255.
std::uint64_t luminance(const Light& light, std::uint64_t pixels) {
    const std::uint64_t weighted = 299 * light.red + 587 * light.green + 114 * light.blue;
    const std::uint64_t whole = 1000 * pixels;
    return (weighted + whole / 2) / whole;
}

}  // namespace

std::uint64_t dHash(const QImage& picture) {
    // What shines through is black, as on a bitmap that was empty before.
    const auto frame =
        picture.convertToFormat(picture.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (frame.isNull())
        return 0;
    const auto width = static_cast<std::size_t>(frame.width());
    const auto height = static_cast<std::size_t>(frame.height());
    std::array<Strip, rows> strips{};
    for (std::size_t y = 0; y < height; ++y) {
        Strip line{};
        addLine(line, {reinterpret_cast<const QRgb*>(frame.constScanLine(static_cast<int>(y))), width});
        // The same sharing out, from top to bottom.
        const auto top = y * rows;
        const auto bottom = top + rows;
        for (auto row = top / height; row <= (bottom - 1) / height; ++row) {
            const auto weight = std::min(bottom, (row + 1) * height) - std::max(top, row * height);
            for (std::size_t column = 0; column < columns; ++column)
                strips.at(row).at(column).add(line.at(column), weight);
        }
    }

    std::uint64_t hash = 0;
    for (std::size_t row = 0; row < rows; ++row)
        for (std::size_t column = 0; column + 1 < columns; ++column)
            if (luminance(strips.at(row).at(column + 1), width * height) <
                luminance(strips.at(row).at(column), width * height))
                hash |= std::uint64_t{1} << (row * 8 + column);
    return hash;
}

int hammingDistance(std::uint64_t one, std::uint64_t other) {
    return std::popcount(one ^ other);
}

}  // namespace corvellan
