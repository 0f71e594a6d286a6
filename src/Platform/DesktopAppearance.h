#pragma once

#include <functional>

namespace corvellan {

/// What the user asks of all programs.
enum class ColorScheme { noPreference, light, dark };

/// How the desktop wants programs to look. Main thread.
class DesktopAppearance {
public:
    virtual ~DesktopAppearance() = default;

    /// `noPreference` while the desktop has not answered yet, or has no such setting.
    [[nodiscard]] virtual ColorScheme colorScheme() const = 0;
    /// Called after it has changed.
    std::function<void()> onChanged;
};

}  // namespace corvellan
