#include "Platform/Linux/Screenshots/X11Picture.h"

#include <gtest/gtest.h>

#include <vector>

namespace corvellan::test {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr X11PictureForm usual{
    .bitsPerPixel = 32, .linePadBits = 32, .redMask = 0xFF0000, .greenMask = 0xFF00, .blueMask = 0xFF};

TEST(X11PictureTest, theUsualFormIsTakenAsItIsAndOpaque) {
    const Bytes bytes{1, 2, 3, 0, 4, 5, 6, 99};
    const QImage image = imageOfX11(usual, {2, 1}, bytes);
    ASSERT_EQ(image.size(), QSize(2, 1));
    EXPECT_EQ(image.pixel(0, 0), qRgba(3, 2, 1, 255));
    EXPECT_EQ(image.pixel(1, 0), qRgba(6, 5, 4, 255));
}

TEST(X11PictureTest, bytesMayLieTheOtherWayRound) {
    X11PictureForm form = usual;
    form.isLittleEndian = false;
    EXPECT_EQ(imageOfX11(form, {1, 1}, Bytes{0, 3, 2, 1}).pixel(0, 0), qRgb(3, 2, 1));
}

TEST(X11PictureTest, linesArePadded) {
    X11PictureForm form = usual;
    form.bitsPerPixel = 24;
    const Bytes bytes{1, 2, 3, 77, 4, 5, 6, 77};
    const QImage image = imageOfX11(form, {1, 2}, bytes);
    EXPECT_EQ(image.pixel(0, 0), qRgb(3, 2, 1));
    EXPECT_EQ(image.pixel(0, 1), qRgb(6, 5, 4));
}

TEST(X11PictureTest, narrowAndWideChannelsSpanTheWholeRange) {
    const X11PictureForm narrow{
        .bitsPerPixel = 16, .linePadBits = 16, .redMask = 0xF800, .greenMask = 0x07E0, .blueMask = 0x001F};
    EXPECT_EQ(imageOfX11(narrow, {1, 1}, Bytes{0xFF, 0xFF}).pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(imageOfX11(narrow, {1, 1}, Bytes{0x00, 0xF8}).pixel(0, 0), qRgb(255, 0, 0));
    EXPECT_EQ(imageOfX11(narrow, {1, 1}, Bytes{0x10, 0x00}).pixel(0, 0), qRgb(0, 0, 132));
    const X11PictureForm wide{
        .bitsPerPixel = 32, .linePadBits = 32, .redMask = 0x3FF00000, .greenMask = 0xFFC00, .blueMask = 0x3FF};
    EXPECT_EQ(imageOfX11(wide, {1, 1}, Bytes{0xFF, 0x03, 0x00, 0x00}).pixel(0, 0), qRgb(0, 0, 255));
}

TEST(X11PictureTest, missingBytesGiveNoPicture) {
    EXPECT_TRUE(imageOfX11(usual, {2, 1}, Bytes(7)).isNull());
    EXPECT_TRUE(imageOfX11(usual, {1, 1}, {}).isNull());
    EXPECT_TRUE(imageOfX11(usual, {65'535, 65'535}, Bytes(1000)).isNull());
    EXPECT_FALSE(imageOfX11(usual, {2, 1}, Bytes(9)).isNull());
}

TEST(X11PictureTest, formsThatNoDisplayHasGiveNoPicture) {
    const Bytes bytes(64);
    for (const int bits : {-32, 0, 1, 8, 12, 33, 64}) {
        X11PictureForm form = usual;
        form.bitsPerPixel = bits;
        EXPECT_TRUE(imageOfX11(form, {1, 1}, bytes).isNull()) << bits;
    }
    for (const int pad : {-8, 0, 7, 64}) {
        X11PictureForm form = usual;
        form.linePadBits = pad;
        EXPECT_TRUE(imageOfX11(form, {1, 1}, bytes).isNull()) << pad;
    }
    for (const std::uint32_t mask : {0U, 0xF0FU, 0xFFFF'FFFFU, 0xFF'FFFFU}) {
        X11PictureForm form = usual;
        form.greenMask = mask;
        EXPECT_TRUE(imageOfX11(form, {1, 1}, bytes).isNull()) << mask;
    }
    for (const QSize size : {QSize{0, 1}, QSize{1, 0}, QSize{-1, 1}, QSize{}})
        EXPECT_TRUE(imageOfX11(usual, size, bytes).isNull());
}

}  // namespace

}  // namespace corvellan::test
