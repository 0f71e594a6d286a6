#include "Services/ScreenShare/FrameHash.h"

#include <gtest/gtest.h>

#include <array>

#include "GeneratedPictures.h"

namespace corvellan::test {

namespace {

/// Each cell of the 9 × 8 grid in a grey of its own.
QImage grid(const std::array<std::array<int, 9>, 8>& greys, QSize size = {9, 8}) {
    QImage picture{size, QImage::Format_RGB32};
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x) {
            const int grey = greys.at(static_cast<std::size_t>(y * 8 / size.height()))
                                 .at(static_cast<std::size_t>(x * 9 / size.width()));
            picture.setPixel(x, y, qRgb(grey, grey, grey));
        }
    return picture;
}

QImage flat(QColor color, QSize size = {64, 48}) {
    QImage picture{size, QImage::Format_RGB32};
    picture.fill(color);
    return picture;
}

/// One cell differs from the rest.
QImage withCell(int row, int column, int grey, QSize size = {90, 80}) {
    std::array<std::array<int, 9>, 8> greys{};
    for (auto& line : greys)
        line.fill(100);
    greys.at(static_cast<std::size_t>(row)).at(static_cast<std::size_t>(column)) = grey;
    return grid(greys, size);
}

constexpr std::uint64_t bit(int row, int column) {
    return std::uint64_t{1} << (row * 8 + column);
}

TEST(FrameHashTest, oneBrightnessThroughoutGivesZero) {
    for (const QColor color : {QColor{Qt::black}, QColor{Qt::white}, QColor{12, 200, 77}})
        for (const QSize size : {QSize{1, 1}, QSize{9, 8}, QSize{1919, 1081}, QSize{3, 2000}, QSize{5000, 1}})
            EXPECT_EQ(dHash(flat(color, size)), 0U) << color.name().toStdString();
}

TEST(FrameHashTest, noPictureGivesZero) {
    EXPECT_EQ(dHash(QImage{}), 0U);
}

TEST(FrameHashTest, aPixelThatIsDarkerThanItsLeftNeighbourSetsTheLeftOnesBit) {
    for (int row = 0; row < 8; ++row)
        for (int column = 0; column < 9; ++column) {
            // Darker: against its left neighbour. Its right neighbour is brighter, and sets nothing.
            EXPECT_EQ(dHash(withCell(row, column, 50)), column > 0 ? bit(row, column - 1) : 0U) << row << column;
            // Brighter: its right neighbour is the darker one.
            EXPECT_EQ(dHash(withCell(row, column, 150)), column < 8 ? bit(row, column) : 0U) << row << column;
        }
}

TEST(FrameHashTest, equalNeighboursSetNothingAndOneStepOfGreySetsABit) {
    EXPECT_EQ(dHash(withCell(3, 4, 100)), 0U);
    EXPECT_EQ(dHash(withCell(3, 4, 99)), bit(3, 3));
    EXPECT_EQ(dHash(withCell(3, 4, 101)), bit(3, 4));
}

TEST(FrameHashTest, aPictureThatDarkensToTheRightSetsAllBits) {
    std::array<std::array<int, 9>, 8> greys{};
    for (auto& line : greys)
        for (int column = 0; column < 9; ++column)
            line.at(static_cast<std::size_t>(column)) = 250 - 20 * column;
    EXPECT_EQ(dHash(grid(greys)), ~std::uint64_t{0});
    EXPECT_EQ(dHash(grid(greys, {1920, 1080})), ~std::uint64_t{0});
    EXPECT_EQ(dHash(grid(greys).mirrored(true, false)), 0U);
}

TEST(FrameHashTest, bitZeroIsTheTopLeftAndBit63TheBottomRight) {
    EXPECT_EQ(dHash(withCell(0, 0, 150)), 1U);
    EXPECT_EQ(dHash(withCell(7, 7, 150)), std::uint64_t{1} << 63);
}

TEST(FrameHashTest, sizeAloneChangesNothing) {
    // Sizes that the grid does not divide, and some smaller than it in one direction.
    const QImage small = withCell(2, 5, 30);
    for (const QSize size : {QSize{900, 800}, QSize{1000, 777}, QSize{91, 83}, QSize{3840, 2160}})
        EXPECT_EQ(dHash(small.scaled(size)), dHash(small)) << size.width();
    QImage narrow{2, 1, QImage::Format_RGB32};
    narrow.setPixel(0, 0, qRgb(200, 200, 200));
    narrow.setPixel(1, 0, qRgb(100, 100, 100));
    // The middle column is half of each, so that both of its sides are steps down.
    for (int row = 0; row < 8; ++row)
        EXPECT_EQ((dHash(narrow) >> (row * 8)) & 0xFFU, 0b0001'1000U) << row;
}

TEST(FrameHashTest, everyPixelCounts) {
    // One bright pixel in a large cell: a scaler that looks at a few points only would pass it by.
    QImage picture = flat(QColor{100, 100, 100}, {900, 800});
    for (int y = 200; y < 300; y += 2)
        for (int x = 300; x < 400; x += 9)
            picture.setPixel(x, y, qRgb(250, 250, 250));
    EXPECT_EQ(dHash(picture), bit(2, 3));
}

TEST(FrameHashTest, coloursCountByTheirBrightness) {
    // Of equal numbers green is the brightest and blue the darkest.
    QImage picture{9, 8, QImage::Format_RGB32};
    picture.fill(QColor{0, 0, 200});
    for (int y = 0; y < 8; ++y) {
        picture.setPixel(0, y, qRgb(0, 200, 0));
        picture.setPixel(1, y, qRgb(200, 0, 0));
    }
    for (int row = 0; row < 8; ++row)
        EXPECT_EQ((dHash(picture) >> (row * 8)) & 0xFFU, 0b11U) << row;
}

TEST(FrameHashTest, whatShinesThroughIsBlack) {
    QImage picture{90, 80, QImage::Format_ARGB32};
    picture.fill(QColor{255, 255, 255, 255});
    for (int y = 0; y < 80; ++y)
        for (int x = 45; x < 90; ++x)
            picture.setPixelColor(x, y, QColor{255, 255, 255, 0});
    for (int row = 0; row < 8; ++row)
        EXPECT_EQ((dHash(picture) >> (row * 8)) & 0xFFU, 0b0001'1000U) << row;
}

TEST(FrameHashTest, theFormOfTheBytesChangesNothing) {
    const QImage picture = GeneratedPictures::photograph({321, 123}, 5);
    for (const auto format : {QImage::Format_RGB888, QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied,
                              QImage::Format_RGBA8888, QImage::Format_BGR888})
        EXPECT_EQ(dHash(picture.convertToFormat(format)), dHash(picture)) << format;
}

TEST(FrameHashTest, equalPicturesHashEqually) {
    for (const unsigned seed : {1U, 2U})
        EXPECT_EQ(dHash(GeneratedPictures::slide({640, 480}, seed)), dHash(GeneratedPictures::slide({640, 480}, seed)));
}

TEST(FrameHashTest, theDistanceCountsTheBitsThatDiffer) {
    EXPECT_EQ(hammingDistance(0, 0), 0);
    EXPECT_EQ(hammingDistance(~std::uint64_t{0}, 0), 64);
    EXPECT_EQ(hammingDistance(0b1011, 0b0001), 2);
    EXPECT_EQ(hammingDistance(std::uint64_t{1} << 63, 1), 2);
}

}  // namespace

}  // namespace corvellan::test
