#pragma once

#include <cstdint>
#include <optional>

#include "Platform/ScreenCapture.h"

namespace corvellan {

/// The window that the user works in: the first one of the frontmost program that is on screen, on layer 0, and
/// more than 100 points wide and high. Absent when there is none, and when that program is this one, so that the
/// coaching panel is never captured on its own.
[[nodiscard]] std::optional<ShareableWindow> pickFrontmostWindow(const ShareableContent& content,
                                                                 std::int64_t ownProcessId);

}  // namespace corvellan
