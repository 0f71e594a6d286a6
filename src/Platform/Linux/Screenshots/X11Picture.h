#pragma once

#include <cstdint>
#include <QImage>
#include <QSize>
#include <span>

namespace corvellan {

/// How an X server lays out the pixels of a picture.
struct X11PictureForm {
    int bitsPerPixel = 0;
    int linePadBits = 0;  ///< Each line takes a multiple of so many bits.
    bool isLittleEndian = true;
    std::uint32_t redMask = 0;
    std::uint32_t greenMask = 0;
    std::uint32_t blueMask = 0;
};

/// The picture, opaque. Null for a form that no display of true colours has, and when bytes are missing.
[[nodiscard]] QImage imageOfX11(const X11PictureForm& form, QSize size, std::span<const std::uint8_t> bytes);

}  // namespace corvellan
