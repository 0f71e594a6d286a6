#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <QCoroTask>
#include <QImage>
#include <QRect>
#include <stop_token>
#include <vector>

#include "Base/Error.h"

namespace corvellan {

/// A screen, in the desktop's coordinates.
struct ShareableDisplay {
    std::uint32_t id = 0;
    QRect frame;

    bool operator==(const ShareableDisplay&) const = default;
};

/// Another program's window, or one of ours.
struct ShareableWindow {
    std::uint32_t id = 0;
    /// Absent where nobody tells whose it is.
    std::optional<std::int64_t> processId;
    bool isOnScreen = false;
    /// 0 for what people work in; panels, docks, menus and the desktop itself lie on others.
    int layer = 0;
    /// Without decorations and shadows, in points.
    QRect frame;

    bool operator==(const ShareableWindow&) const = default;
};

/// What there is to be captured at this moment.
struct ShareableContent {
    /// The main one first.
    std::vector<ShareableDisplay> displays;
    /// From the top down. Empty where the desktop tells programs nothing of each other's windows.
    std::vector<ShareableWindow> windows;
    /// Of the program that has the keyboard; absent where nobody tells.
    std::optional<std::int64_t> frontmostProcessId;
};

/// Pictures of single windows and displays, without the pointer. One question at a time, from any executor;
/// the asker is resumed on its own. What was asked goes on when the object goes.
class ScreenCapture {
public:
    virtual ~ScreenCapture() = default;

    [[nodiscard]] virtual QCoro::Task<std::expected<ShareableContent, Error>> content(std::stop_token stop) = 0;
    /// Fails when the window has gone since.
    [[nodiscard]] virtual QCoro::Task<std::expected<QImage, Error>> windowPicture(ShareableWindow window,
                                                                                  std::stop_token stop) = 0;
    [[nodiscard]] virtual QCoro::Task<std::expected<QImage, Error>> displayPicture(ShareableDisplay display,
                                                                                   std::stop_token stop) = 0;
};

/// Where captures come from.
class ScreenCaptures {
public:
    virtual ~ScreenCaptures() = default;

    /// For one stretch of sharing: what the user refuses in it stays refused until the next. Any thread,
    /// never waits; what can't be reached fails each question.
    [[nodiscard]] virtual std::shared_ptr<ScreenCapture> open() = 0;
    /// The desktop tells programs of each other's windows. Where it doesn't, whole displays are all there is.
    [[nodiscard]] virtual bool seesWindows() const = 0;
};

}  // namespace corvellan
