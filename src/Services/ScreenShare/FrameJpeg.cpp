#include "FrameJpeg.h"

#include <algorithm>
#include <cmath>
#include <QBuffer>
#include <QImageWriter>

namespace corvellan {

namespace {

int qualityPercent(float quality) {
    constexpr float whole = 100;
    return static_cast<int>(std::lround(std::clamp(quality, 0.0F, 1.0F) * whole));
}

/// Three channels, whatever the picture had.
QImage opaque(const QImage& picture) {
    if (!picture.hasAlphaChannel())
        return picture.convertToFormat(QImage::Format_RGB32);
    QImage premultiplied = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    // The same bytes mean the picture before black.
    premultiplied.reinterpretAsFormat(QImage::Format_RGB32);
    return premultiplied;
}

}  // namespace

std::optional<QImage> resizeIfNeeded(const QImage& picture, float maxDimension) {
    const int longest = std::max(picture.width(), picture.height());
    if (!(static_cast<double>(longest) > maxDimension))
        return std::nullopt;
    const double scale = static_cast<double>(maxDimension) / longest;
    const auto width = static_cast<int>(std::lround(picture.width() * scale));
    const auto height = static_cast<int>(std::lround(picture.height() * scale));
    if (width <= 0 || height <= 0)
        return std::nullopt;
    QImage resized = picture.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (resized.isNull())
        return std::nullopt;
    return resized;
}

std::optional<QByteArray> encodeJPEG(const QImage& picture, float maxDimension, float quality) {
    const QImage frame = opaque(picture);
    QByteArray file;
    QBuffer buffer{&file};
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer{&buffer, "jpeg"};
    writer.setQuality(qualityPercent(quality));
    if (!writer.write(resizeIfNeeded(frame, maxDimension).value_or(frame)))
        return std::nullopt;
    return file;
}

}  // namespace corvellan
