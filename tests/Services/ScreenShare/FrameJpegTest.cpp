#include "Services/ScreenShare/FrameJpeg.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "GeneratedPictures.h"

namespace corvellan::test {

namespace {

constexpr float limit = 1280;
constexpr float quality = 0.7F;

QImage blank(int width, int height) {
    QImage picture{width, height, QImage::Format_RGB32};
    picture.fill(Qt::gray);
    return picture;
}

std::optional<QSize> resizedTo(int width, int height, float longest = limit) {
    const auto resized = resizeIfNeeded(blank(width, height), longest);
    return resized ? std::optional{resized->size()} : std::nullopt;
}

QImage decoded(const std::optional<QByteArray>& file) {
    return file ? QImage::fromData(*file, "jpeg") : QImage{};
}

TEST(FrameResizeTest, upTo1280PixelsNothingIsResized) {
    EXPECT_EQ(resizedTo(1280, 720), std::nullopt);
    EXPECT_EQ(resizedTo(720, 1280), std::nullopt);
    EXPECT_EQ(resizedTo(1280, 1280), std::nullopt);
    EXPECT_EQ(resizedTo(1, 1), std::nullopt);
    EXPECT_EQ(resizeIfNeeded(QImage{}, limit), std::nullopt);
}

TEST(FrameResizeTest, theLongestSideComesDownAndTheOtherIsRounded) {
    EXPECT_EQ(resizedTo(2560, 1440), QSize(1280, 720));
    EXPECT_EQ(resizedTo(1000, 3000), QSize(427, 1280));
    EXPECT_EQ(resizedTo(3000, 1000), QSize(1280, 427));
    EXPECT_EQ(resizedTo(1281, 720), QSize(1280, 719));
    EXPECT_EQ(resizedTo(2560, 1441), QSize(1280, 721)) << "halves go up";
    EXPECT_EQ(resizedTo(3840, 2160), QSize(1280, 720));
}

TEST(FrameResizeTest, whatWouldHaveNoPixelsLeftStaysAsItIs) {
    EXPECT_EQ(resizedTo(5000, 1), std::nullopt);
    EXPECT_EQ(resizedTo(2560, 1), QSize(1280, 1)) << "half a pixel is one";
    for (const float longest :
         {0.0F, 0.4F, -5.0F, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()})
        EXPECT_EQ(resizedTo(200, 100, longest), std::nullopt) << longest;
}

TEST(FrameResizeTest, eachPixelIsTheMeanOfItsArea) {
    // Single white lines, of which plain sampling would see all or none.
    QImage picture{3840, 2160, QImage::Format_RGB32};
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, x % 3 == 0 ? 0xFFFFFFFFU : 0xFF000000U);
    const auto resized = resizeIfNeeded(picture, limit);
    ASSERT_TRUE(resized);
    for (int y = 0; y < resized->height(); y += 7)
        for (int x = 0; x < resized->width(); ++x)
            ASSERT_NEAR(qRed(resized->pixel(x, y)), 85, 2) << x << ' ' << y;
}

TEST(FrameJpegTest, isAJpegFileOfTheResizedPicture) {
    const auto file = encodeJPEG(GeneratedPictures::photograph({2560, 1440}, 1), limit, quality);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->startsWith("\xFF\xD8\xFF"));
    EXPECT_TRUE(file->endsWith("\xFF\xD9"));
    EXPECT_EQ(decoded(file).size(), QSize(1280, 720));
}

TEST(FrameJpegTest, aSmallPictureKeepsItsSize) {
    EXPECT_EQ(decoded(encodeJPEG(blank(1280, 720), limit, quality)).size(), QSize(1280, 720));
    EXPECT_EQ(decoded(encodeJPEG(blank(1, 1), limit, quality)).size(), QSize(1, 1));
}

TEST(FrameJpegTest, aPictureThatCantBeResizedIsEncodedAsItIs) {
    EXPECT_EQ(decoded(encodeJPEG(blank(5000, 1), limit, quality)).size(), QSize(5000, 1));
}

TEST(FrameJpegTest, theQualityIsTheWritersInPercent) {
    const QImage picture = GeneratedPictures::photograph({640, 480}, 2);
    const auto file = encodeJPEG(picture, limit, quality);
    ASSERT_TRUE(file);
    // The first steps of the quantization table for brightness, 16 and 11 at quality 50, are 60 % of that at 70.
    const auto table = file->indexOf("\xFF\xDB");
    ASSERT_GT(table, 0);
    EXPECT_EQ(file->sliced(table + 4, 3), QByteArrayView("\x00\x0A\x07", 3));
    const auto size = [&](float at) { return encodeJPEG(picture, limit, at).value_or(QByteArray{}).size(); };
    EXPECT_LT(size(0.1F), size(0.7F));
    EXPECT_LT(size(0.7F), size(1.0F));
    // Beyond the scale is its end.
    EXPECT_EQ(size(7.0F), size(1.0F));
    EXPECT_EQ(size(-1.0F), size(0.0F));
}

TEST(FrameJpegTest, whatShinesThroughBecomesBlack) {
    QImage picture{64, 64, QImage::Format_ARGB32};
    picture.fill(QColor{255, 255, 255, 0});
    EXPECT_NEAR(qRed(decoded(encodeJPEG(picture, limit, quality)).pixel(32, 32)), 0, 2);
    picture.fill(QColor{255, 255, 255, 128});
    EXPECT_NEAR(qRed(decoded(encodeJPEG(picture, limit, quality)).pixel(32, 32)), 128, 3);
}

TEST(FrameJpegTest, noFileComesOfWhatJpegDoesNotKnow) {
    EXPECT_EQ(encodeJPEG(QImage{}, limit, quality), std::nullopt);
    // So flat that resizing would leave nothing, and too long for the format.
    EXPECT_EQ(encodeJPEG(blank(70'000, 1), limit, quality), std::nullopt);
}

}  // namespace

}  // namespace corvellan::test
