#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <QColor>
#include <QImage>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace corvellan::test {

/// Pictures of the kinds that screens show, the same in every run.
class GeneratedPictures {
public:
    using Named = std::pair<std::string, QImage>;

    static const std::vector<Named>& all() {
        static const std::vector<Named> pictures = [] {
            std::vector<Named> made;
            for (const QSize size : {QSize{1920, 1080}, QSize{803, 1699}, QSize{640, 480}})
                add(made, size);
            return made;
        }();
        return pictures;
    }

    /// Words of dark pixels in lines on white, as text looks from afar.
    static QImage document(QSize size, unsigned seed) { return text(size, seed, 0xFFFFFFFF, 0xFF202020, 24, 0.9); }
    static QImage code(QSize size, unsigned seed) { return text(size, seed, 0xFF1E1E1E, 0xFF9CDCFE, 18, 0.5); }

    static QImage slide(QSize size, unsigned seed) {
        std::mt19937 random{seed};
        QImage picture{size, QImage::Format_RGB32};
        picture.fill(Qt::white);
        for (int i = 0; i < 7; ++i) {
            const int width = size.width() / 10 + below(random, size.width() / 3);
            const int height = size.height() / 10 + below(random, size.height() / 3);
            fill(picture, QRect{below(random, size.width()), below(random, size.height()), width, height},
                 0xFF000000U | (random() & 0xFFFFFFU));
        }
        return picture;
    }

    static QImage table(QSize size, unsigned seed) {
        std::mt19937 random{seed};
        QImage picture = text(size, seed, 0xFFFAFAFA, 0xFF404040, 32, 0.4);
        fill(picture, {0, 0, size.width(), size.height() / 12}, 0xFF2A4B8DU);
        fill(picture, {0, 0, size.width() / 6, size.height()}, 0xFFE4E9F2U);
        for (int x = size.width() / 6; x < size.width(); x += 60 + below(random, 200))
            fill(picture, {x, 0, 1, size.height()}, 0xFFC0C0C0U);
        return picture;
    }

    /// Soft shapes with grain.
    static QImage photograph(QSize size, unsigned seed) {
        std::mt19937 random{seed};
        const double a = 1.0 + below(random, 40) / 10.0;
        const double b = 1.0 + below(random, 40) / 10.0;
        const double c = below(random, 60) / 10.0;
        std::vector<double> across;
        for (int x = 0; x < size.width(); ++x)
            across.push_back(std::sin(a * x * 6.0 / size.width() + c));
        return paint(size, [&](int x, int y) {
            const double down = std::cos(b * y * 6.0 / size.height());
            const double wave = across.at(static_cast<std::size_t>(x));
            const double light = 128 + 60 * wave * down + 30 * wave * wave * down;
            const int grain = below(random, 17) - 8;
            return qRgb(level(light + 20 + grain), level(light + grain), level(light - 25 + 12 * down + grain));
        });
    }

    static QImage noise(QSize size, unsigned seed) {
        std::mt19937 random{seed};
        return paint(size, [&](int, int) { return static_cast<QRgb>(0xFF000000U | (random() & 0xFFFFFFU)); });
    }

    static QImage gradient(QSize size) {
        return paint(size,
                     [size](int x, int y) { return qRgb(255 - x * 255 / size.width(), y * 255 / size.height(), 90); });
    }

    static QImage checks(QSize size) {
        return paint(size, [](int x, int y) { return ((x / 97 + y / 61) % 2) != 0 ? 0xFFFFFFFFU : 0xFF000000U; });
    }

private:
    static void add(std::vector<Named>& pictures, QSize size) {
        const std::string of = " " + std::to_string(size.width()) + "x" + std::to_string(size.height());
        for (const unsigned seed : {1U, 2U}) {
            const std::string number = of + " #" + std::to_string(seed);
            pictures.emplace_back("document" + number, document(size, seed));
            pictures.emplace_back("dark code" + number, code(size, seed));
            pictures.emplace_back("slide" + number, slide(size, seed));
            pictures.emplace_back("table" + number, table(size, seed));
            pictures.emplace_back("photograph" + number, photograph(size, seed));
        }
        pictures.emplace_back("gradient" + of, gradient(size));
        pictures.emplace_back("checks" + of, checks(size));
    }

    template <typename ColorAt>
    static QImage paint(QSize size, ColorAt colorAt) {
        QImage picture{size, QImage::Format_RGB32};
        for (int y = 0; y < size.height(); ++y) {
            auto* const line = reinterpret_cast<QRgb*>(picture.scanLine(y));
            for (int x = 0; x < size.width(); ++x)
                line[x] = colorAt(x, y);
        }
        return picture;
    }

    static int below(std::mt19937& random, int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(std::max(limit, 1)));
    }
    static int level(double value) { return static_cast<int>(std::clamp(value, 0.0, 255.0)); }

    static void fill(QImage& picture, QRect area, QRgb color) {
        const QRect inside = area & picture.rect();
        for (int y = inside.top(); y <= inside.bottom(); ++y) {
            auto* const line = reinterpret_cast<QRgb*>(picture.scanLine(y));
            std::fill(line + inside.left(), line + inside.right() + 1, color);
        }
    }

    static QImage text(QSize size, unsigned seed, QRgb paper, QRgb ink, int lineHeight, double fullness) {
        std::mt19937 random{seed};
        QImage picture{size, QImage::Format_RGB32};
        picture.fill(QColor::fromRgb(paper));
        for (int top = lineHeight; top + lineHeight < size.height(); top += lineHeight) {
            const int end = static_cast<int>(size.width() * fullness) - below(random, size.width() / 3);
            for (int x = 40; x < end; x += 12) {
                const int word = 20 + below(random, 90);
                for (int letter = 0; letter < word && x + letter < end; letter += 3)
                    fill(picture, {x + letter, top + below(random, lineHeight / 3), 2, lineHeight / 3}, ink);
                x += word;
            }
        }
        return picture;
    }
};

}  // namespace corvellan::test
