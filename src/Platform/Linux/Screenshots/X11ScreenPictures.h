#pragma once

#include "Platform/ScreenPictures.h"

namespace corvellan {

/// Reads the root window of the X display that the program's own windows are on, every screen of it, side
/// by side.
class X11ScreenPictures final : public ScreenPictures {
public:
    QCoro::Task<std::expected<QImage, Error>> takePicture(std::stop_token stop) override;
};

}  // namespace corvellan
