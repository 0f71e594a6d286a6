#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "Platform/Linux/Screenshots/X11Picture.h"

using namespace corvellan;

namespace {

struct Header {
    std::int8_t bitsPerPixel;
    std::int8_t linePadBits;
    std::uint8_t isLittleEndian;
    std::int8_t unused;
    std::uint32_t redMask;
    std::uint32_t greenMask;
    std::uint32_t blueMask;
    std::int32_t width;
    std::int32_t height;
};

}  // namespace

// Any form, size and bytes are a picture of that size, opaque throughout, or none.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Header header{};
    if (size < sizeof header)
        return 0;
    std::memcpy(&header, data, sizeof header);
    const X11PictureForm form{.bitsPerPixel = header.bitsPerPixel,
                              .linePadBits = header.linePadBits,
                              .isLittleEndian = header.isLittleEndian % 2 == 0,
                              .redMask = header.redMask,
                              .greenMask = header.greenMask,
                              .blueMask = header.blueMask};
    const QSize wanted{header.width, header.height};
    const QImage image = imageOfX11(form, wanted, {data + sizeof header, size - sizeof header});
    if (image.isNull())
        return 0;
    if (image.size() != wanted)
        std::abort();
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) != 255)
                std::abort();
    return 0;
}
