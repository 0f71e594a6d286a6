#include "Shell/Stealth/CaptureMarker.h"

#include <gtest/gtest.h>

#include <QPainter>

#include "Support/FakeScreenPictures.h"

namespace corvellan::test {

namespace {

QImage painted(const CaptureMarker& marker) {
    QImage image{CaptureMarker::columns * CaptureMarker::cellSize, CaptureMarker::rows * CaptureMarker::cellSize,
                 QImage::Format_RGB32};
    QPainter painter{&image};
    int i = 0;
    for (const QColor& color : marker.colors()) {
        painter.fillRect(i % CaptureMarker::columns * CaptureMarker::cellSize,
                         i / CaptureMarker::columns * CaptureMarker::cellSize, CaptureMarker::cellSize,
                         CaptureMarker::cellSize, color);
        ++i;
    }
    return image;
}

QImage withImageAt(QImage screen, const QImage& image, QPointF at) {
    QPainter painter{&screen};
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(at, image);
    return screen;
}

class CaptureMarkerTest : public testing::Test {
protected:
    const CaptureMarker marker = CaptureMarker::random();
    const QImage screen = FakeScreenPictures::desktop({480, 300});
};

TEST_F(CaptureMarkerTest, noTwoAreAlike) {
    EXPECT_NE(marker, CaptureMarker::random());
}

TEST_F(CaptureMarkerTest, fitsTheLowestLayoutOfThePanel) {
    EXPECT_LE(CaptureMarker::rows * CaptureMarker::cellSize, 32);
}

TEST_F(CaptureMarkerTest, isFoundWhereverItStands) {
    const QImage image = painted(marker);
    for (const QPoint at : {QPoint{0, 0}, QPoint{1, 1}, QPoint{333, 217}, QPoint{480 - 64, 300 - 32}})
        EXPECT_TRUE(marker.isIn(withImageAt(screen, image, at))) << at.x() << ", " << at.y();
}

TEST_F(CaptureMarkerTest, isFoundEnlargedAndReducedAndBlurred) {
    for (const double scale : {0.75, 0.9, 1.0, 1.1, 1.25, 4.0 / 3, 1.5, 1.6, 1.75, 2.0, 2.25, 2.5, 3.0, 3.75}) {
        const QImage image = painted(marker);
        const QImage scaled = image.scaled(qRound(image.width() * scale), qRound(image.height() * scale),
                                           Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        for (const QPoint at : {QPoint{37, 59}, QPoint{202, 141}})
            EXPECT_TRUE(marker.isIn(withImageAt(screen, scaled, at))) << scale << " at " << at.x() << ", " << at.y();
    }
}

TEST_F(CaptureMarkerTest, isFoundWhereTheColoursHaveChanged) {
    QImage image = painted(marker);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            image.setPixel(x, y, qRgb(40 + qRed(pixel) * 2 / 3, 20 + qGreen(pixel) * 4 / 5, 70 + qBlue(pixel) / 2));
        }
    EXPECT_TRUE(marker.isIn(withImageAt(screen, image, QPoint{50, 60})));
}

TEST_F(CaptureMarkerTest, isNotFoundWhereItIsNot) {
    EXPECT_FALSE(marker.isIn(screen));
    EXPECT_FALSE(marker.isIn(withImageAt(screen, painted(CaptureMarker::random()), QPoint{100, 100})))
        << "another one's";
    EXPECT_FALSE(marker.isIn(QImage{}));
    EXPECT_FALSE(marker.isIn(QImage{3, 2, QImage::Format_RGB32}));
}

TEST_F(CaptureMarkerTest, isNotFoundUnderABlackArea) {
    QImage image = painted(marker);
    image.fill(Qt::black);
    EXPECT_FALSE(marker.isIn(withImageAt(screen, image, QPoint{100, 100})));
}

TEST_F(CaptureMarkerTest, onlyAPictureOfOneColourIsBlank) {
    EXPECT_TRUE(isBlank({}));
    QImage image{100, 80, QImage::Format_RGB32};
    image.fill(Qt::black);
    EXPECT_TRUE(isBlank(image));
    image.setPixel(99, 79, qRgb(1, 0, 0));
    EXPECT_FALSE(isBlank(image));
}

}  // namespace

}  // namespace corvellan::test
