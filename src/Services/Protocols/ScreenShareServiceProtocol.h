#pragma once

#include <optional>
#include <QCoroTask>
#include <QString>

namespace corvellan {

/// What is captured, how often, and when a picture counts as changed.
struct ScreenShareOptions {
    enum class CaptureScope { activeWindow, fullScreen };

    double intervalSeconds = 10.0;
    int changeThreshold = 8;    ///< Hamming distance between two frame hashes.
    float maxDimension = 1280;  ///< Longest side of the uploaded picture, in pixels.
    float jpegQuality = 0.7F;   ///< 0 to 1.
    CaptureScope scope = CaptureScope::activeWindow;

    bool operator==(const ScreenShareOptions&) const = default;
};

/// Sends changed frames of the screen to the coach. Work runs on the service's own executor.
class ScreenShareServiceProtocol {
public:
    virtual ~ScreenShareServiceProtocol() = default;

    virtual QCoro::Task<void> start(QString sessionId, QString httpBase, std::optional<QString> authToken,
                                    ScreenShareOptions options) = 0;
    /// Harmless when idle.
    virtual QCoro::Task<void> stop() = 0;
};

}  // namespace corvellan
