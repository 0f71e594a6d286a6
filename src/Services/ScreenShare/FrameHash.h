#pragma once

#include <cstdint>
#include <QImage>

namespace corvellan {

/// The difference hash of a picture: bit r × 8 + c is set where, in the picture scaled to 9 × 8 luminances, the
/// pixel at row r and column c + 1 is darker than its neighbour at column c. 0 for one brightness throughout,
/// and for no picture. Any thread; takes some milliseconds for a large picture.
///
/// The scaler takes each of the 72 values from the whole of its part of the picture. One that looks at a few
/// points only, as plain bilinear sampling does, sees 1 pixel in 30,000 of a large screen: a moved line of text
/// would change the hash or not by chance, and the noise of a JPEG encoder as well.
[[nodiscard]] std::uint64_t dHash(const QImage& picture);

/// How many bits differ.
[[nodiscard]] int hammingDistance(std::uint64_t one, std::uint64_t other);

}  // namespace corvellan
