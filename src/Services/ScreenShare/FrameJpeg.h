#pragma once

#include <optional>
#include <QByteArray>
#include <QImage>

namespace corvellan {

/// The picture with its longest side brought down to `maxDimension` pixels, its shape kept, each pixel the mean
/// of the area that it stands for. Absent when the picture is small enough as it is, and when nothing would be
/// left of its shorter side. Any thread.
[[nodiscard]] std::optional<QImage> resizeIfNeeded(const QImage& picture, float maxDimension);

/// The picture as a JPEG file, resized if needed. What shines through becomes black. Absent when there is no such
/// file: JPEG knows no picture without pixels, and none with a side of more than 65,500. Any thread; takes tens
/// of milliseconds for a large picture.
///
/// \param quality 0 to 1.
[[nodiscard]] std::optional<QByteArray> encodeJPEG(const QImage& picture, float maxDimension, float quality);

}  // namespace corvellan
