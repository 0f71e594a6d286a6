#include "X11Picture.h"

#include <bit>
#include <optional>

namespace corvellan {

namespace {

/// Where one colour lies in a pixel.
class Channel {
public:
    explicit Channel(std::uint32_t mask) : m_shift(std::countr_zero(mask)), m_most(mask >> m_shift) {}

    static bool isOne(std::uint32_t mask) {
        // In one piece, and not so wide that scaling it overflows.
        return mask != 0 && std::has_single_bit((mask >> std::countr_zero(mask)) + 1) && std::popcount(mask) <= 16;
    }
    [[nodiscard]] std::uint32_t of(std::uint32_t pixel) const {
        return (((pixel >> m_shift) & m_most) * 255 + m_most / 2) / m_most;
    }

private:
    int m_shift;
    std::uint32_t m_most;
};

std::uint32_t pixelAt(const std::uint8_t* bytes, int count, bool isLittleEndian) {
    std::uint32_t pixel = 0;
    for (int i = 0; i < count; ++i)
        pixel |= std::uint32_t{bytes[i]} << (8 * (isLittleEndian ? i : count - 1 - i));
    return pixel;
}

/// Absent for what is no line of pixels.
std::optional<std::size_t> bytesPerLine(const X11PictureForm& form, QSize size) {
    const bool isWhole = form.bitsPerPixel == 16 || form.bitsPerPixel == 24 || form.bitsPerPixel == 32;
    const bool isPadded = form.linePadBits == 8 || form.linePadBits == 16 || form.linePadBits == 32;
    if (!isWhole || !isPadded || size.isEmpty())
        return std::nullopt;
    const auto pad = static_cast<std::size_t>(form.linePadBits);
    const auto bits = static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(form.bitsPerPixel);
    return (bits + pad - 1) / pad * pad / 8;
}

}  // namespace

QImage imageOfX11(const X11PictureForm& form, QSize size, std::span<const std::uint8_t> bytes) {
    const auto stride = bytesPerLine(form, size);
    if (!stride || bytes.size() / *stride < static_cast<std::size_t>(size.height()))
        return {};
    if (!Channel::isOne(form.redMask) || !Channel::isOne(form.greenMask) || !Channel::isOne(form.blueMask))
        return {};
    QImage image{size, QImage::Format_RGB32};
    if (image.isNull())
        return {};
    const Channel red{form.redMask};
    const Channel green{form.greenMask};
    const Channel blue{form.blueMask};
    // The form that nearly all displays have is ours too, but for the byte that is not used.
    const bool isOurs = form.bitsPerPixel == 32 && form.isLittleEndian && form.redMask == 0xFF0000U &&
                        form.greenMask == 0xFF00U && form.blueMask == 0xFFU;
    const int pixelBytes = form.bitsPerPixel / 8;
    for (int y = 0; y < size.height(); ++y) {
        const std::uint8_t* from = bytes.subspan(static_cast<std::size_t>(y) * *stride, *stride).data();
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x, from += pixelBytes) {
            const std::uint32_t pixel = pixelAt(from, pixelBytes, form.isLittleEndian);
            line[x] = isOurs ? 0xFF000000U | pixel
                             : 0xFF000000U | red.of(pixel) << 16U | green.of(pixel) << 8U | blue.of(pixel);
        }
    }
    return image;
}

}  // namespace corvellan
