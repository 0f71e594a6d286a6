#include "App/MenuBar/StatusIcon.h"

#include <gtest/gtest.h>

#include <cmath>
#include <QImage>

namespace corvellan::test {

namespace {

double channel(float value) {
    return value <= 0.04045F ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(QColor color) {
    return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) + 0.0722 * channel(color.blueF());
}

/// As accessibility guidelines measure it: 1 is none, and graphics need 3.
double contrast(QColor one, QColor other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QImage imageOf(QStringView symbol, int side) {
    return statusIcon(symbol).pixmap(QSize{side, side}, 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
}

TEST(StatusIconTest, standsOutFromTheBarsOfDarkAndOfLightDesktops) {
    for (const QColor bar : {QColor{Qt::black}, QColor{0x2a, 0x2e, 0x32}, QColor{0xef, 0xf0, 0xf1}, QColor{Qt::white}})
        EXPECT_GE(contrast(statusIconColor(), bar), 3.0) << bar.name().toStdString();
}

TEST(StatusIconTest, hasEverySizeThatBarsAskFor) {
    const auto sizes = statusIcon(u"waveform").availableSizes();
    for (const int side : {16, 22, 24, 32, 48, 64})
        EXPECT_TRUE(sizes.contains(QSize(side, side))) << side;
}

TEST(StatusIconTest, isDrawnInItsColourWithClearCorners) {
    for (const int side : {16, 22, 64}) {
        const QImage image = imageOf(u"waveform", side);
        ASSERT_EQ(image.size(), QSize(side, side));
        int solid = 0;
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) {
                const QColor pixel = image.pixelColor(x, y);
                if (pixel.alpha() < 255)
                    continue;
                ++solid;
                EXPECT_EQ(pixel.rgb(), statusIconColor().rgb());
            }
        EXPECT_GT(solid, side * side / 25) << side;
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
        EXPECT_EQ(image.pixelColor(side - 1, side - 1).alpha(), 0);
    }
}

TEST(StatusIconTest, anUnknownSymbolIsPlainlyNotWhatWasMeant) {
    EXPECT_NE(imageOf(u"no.such.symbol", 64), imageOf(u"waveform", 64));
    EXPECT_EQ(imageOf(u"no.such.symbol", 64), imageOf(u"questionmark.circle", 64));
}

}  // namespace

}  // namespace corvellan::test
