#pragma once

#include <functional>
#include <memory>
#include <QString>

namespace corvellan {

/// A key by its place on the keyboard, named after what a US layout prints on it.
enum class PhysicalKey { space, j, other };

/// A key went down, with the modifiers that were held at that instant. Others may be held as well.
struct KeyDown {
    PhysicalKey key = PhysicalKey::other;
    bool isCommandDown = false;  ///< The Super key, where there is no Command.
    bool isShiftDown = false;
    /// Lets a window come to the front on desktops that want to see a reason for it. May be empty.
    QString activationToken;
};

/// Whether key presses in other programs reach this one.
enum class GlobalKeyWatch { starting, watching, unavailable };

/// Watches key presses in any program for as long as it lives. Main thread.
class GlobalKeyMonitor {
public:
    virtual ~GlobalKeyMonitor() = default;

    [[nodiscard]] virtual GlobalKeyWatch watch() const = 0;
    /// For the user: while watching, which keys work and how to change them, if the desktop decides that;
    /// when unavailable, why. Empty when there is nothing to say.
    [[nodiscard]] virtual QString explanation() const = 0;
    /// Called after either of them has changed.
    std::function<void()> onChanged;
};

/// Key presses anywhere on the desktop. They are observed, never consumed: the program with the keyboard
/// receives them too, except where the desktop itself gives the shortcut to this program alone.
class GlobalKeys {
public:
    virtual ~GlobalKeys() = default;

    /// Never null. `onKeyDown` is called on the main thread; a key that is held repeats nothing. Some
    /// desktops tell only of Command + Shift + J, the one shortcut that the program asks them for.
    [[nodiscard]] virtual std::unique_ptr<GlobalKeyMonitor> addGlobalMonitor(
        std::function<void(const KeyDown&)> onKeyDown) = 0;
};

}  // namespace corvellan
