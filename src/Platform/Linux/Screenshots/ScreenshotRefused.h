#pragma once

#include <QString>

namespace corvellan {

/// The user does not want a picture taken, or does not answer: to ask again and again would be a nuisance.
struct ScreenshotRefused {
    QString message;

    [[nodiscard]] QString errorDescription() const { return message; }
};

}  // namespace corvellan
