#pragma once

#include <QString>

namespace corvellan {

/// Why a picture of the screen did not reach the coach. Travels inside `Error`; failures of the transport and of
/// the desktop stand beside it.
struct ScreenShareError {
    enum class Kind { uploadStatus, noDisplay };

    Kind kind = Kind::noDisplay;
    int status = 0;  ///< uploadStatus only: the server's HTTP status.

    [[nodiscard]] QString errorDescription() const;
};

}  // namespace corvellan
