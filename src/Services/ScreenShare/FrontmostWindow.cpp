#include "FrontmostWindow.h"

#include <algorithm>

namespace corvellan {

std::optional<ShareableWindow> pickFrontmostWindow(const ShareableContent& content, std::int64_t ownProcessId) {
    constexpr int smallestSide = 100;
    const auto frontmost = content.frontmostProcessId;
    if (!frontmost || *frontmost == ownProcessId)
        return std::nullopt;
    const auto found = std::ranges::find_if(content.windows, [&](const ShareableWindow& window) {
        return window.processId == frontmost && window.isOnScreen && window.layer == 0 &&
               window.frame.width() > smallestSide && window.frame.height() > smallestSide;
    });
    return found == content.windows.end() ? std::nullopt : std::optional{*found};
}

}  // namespace corvellan
