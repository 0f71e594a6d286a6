// How far the hash of a picture moves when the picture has been a JPEG file: not so far that it counts as another.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include "GeneratedPictures.h"
#include "Services/Protocols/ScreenShareServiceProtocol.h"
#include "Services/ScreenShare/FrameHash.h"
#include "Services/ScreenShare/FrameJpeg.h"

namespace corvellan::test {

namespace {

/// Bits that differ between the picture and what its file shows.
int movedBits(const QImage& picture, float maxDimension, float quality) {
    const auto file = encodeJPEG(picture, maxDimension, quality);
    if (!file)
        return 64;
    const auto decoded = QImage::fromData(*file, "jpeg");
    return decoded.isNull() ? 64 : hammingDistance(dHash(picture), dHash(decoded));
}

struct Spread {
    int pictures = 0;
    int sum = 0;
    int worst = 0;
    std::string worstName;
    std::array<int, 65> counts{};

    void add(const std::string& name, int bits) {
        ++pictures;
        sum += bits;
        ++counts.at(static_cast<std::size_t>(bits));
        if (bits > worst) {
            worst = bits;
            worstName = name;
        }
    }
    void print(const char* what) const {
        std::printf("%s: %d pictures, mean %.2f bits, worst %d (%s); with 0, 1, 2, ... bits:", what, pictures,
                    static_cast<double>(sum) / pictures, worst, worstName.c_str());
        for (int bits = 0; bits <= worst; ++bits)
            std::printf(" %d", counts.at(static_cast<std::size_t>(bits)));
        std::printf("\n");
    }
};

constexpr ScreenShareOptions options;

TEST(HashStabilityTest, aJpegOfThePictureHashesBelowTheThreshold) {
    constexpr float wholeSize = 65'535;
    Spread encoded;
    Spread uploaded;
    for (const auto& [name, picture] : GeneratedPictures::all()) {
        encoded.add(name, movedBits(picture, wholeSize, options.jpegQuality));
        uploaded.add(name, movedBits(picture, options.maxDimension, options.jpegQuality));
    }
    encoded.print("JPEG at 0.7");
    uploaded.print("JPEG at 0.7, at most 1280 pixels");
    EXPECT_LT(encoded.worst, options.changeThreshold);
    EXPECT_LT(uploaded.worst, options.changeThreshold);
}

TEST(HashStabilityTest, aJpegOfNoiseHashesBelowTheThresholdToo) {
    // All parts of noise are equally bright but for less than one level: the least stable picture there is.
    Spread noise;
    for (const unsigned seed : {1U, 2U, 3U, 4U})
        noise.add("#" + std::to_string(seed),
                  movedBits(GeneratedPictures::noise({1200, 700}, seed), options.maxDimension, options.jpegQuality));
    noise.print("Noise, JPEG at 0.7");
    EXPECT_LT(noise.worst, options.changeThreshold);
}

TEST(HashStabilityTest, differentPicturesLieBeyondTheThreshold) {
    // Without this, a hash that never changes would be the most stable one.
    std::vector<std::pair<QSize, std::uint64_t>> hashes;
    for (const auto& [name, picture] : GeneratedPictures::all())
        hashes.emplace_back(picture.size(), dHash(picture));
    int pairs = 0;
    int apart = 0;
    for (std::size_t i = 0; i < hashes.size(); ++i)
        for (std::size_t j = i + 1; j < hashes.size(); ++j) {
            if (hashes[i].first != hashes[j].first)
                continue;
            ++pairs;
            apart += hammingDistance(hashes[i].second, hashes[j].second) >= options.changeThreshold ? 1 : 0;
        }
    std::printf("%d of %d pairs of different pictures count as changed\n", apart, pairs);
    EXPECT_GT(apart * 10, pairs * 9);
}

}  // namespace

}  // namespace corvellan::test
