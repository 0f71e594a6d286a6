#pragma once

#include <expected>
#include <QCoroTask>
#include <QImage>
#include <stop_token>

#include "Base/Error.h"

namespace corvellan {

/// Pictures of the whole screen, taken the way any other program of the user would take them. Main thread.
class ScreenPictures {
public:
    virtual ~ScreenPictures() = default;

    /// One picture of everything that the desktop hands out. It may ask the user first, and take as long
    /// as the user does. Fails with a sentence for the user; with `Error::cancelled()` when `stop` was
    /// requested.
    virtual QCoro::Task<std::expected<QImage, Error>> takePicture(std::stop_token stop) = 0;
};

}  // namespace corvellan
