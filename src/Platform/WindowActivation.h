#pragma once

#include <QString>

class QWindow;

namespace corvellan {

/// Gives a window the keyboard although another program has it. Main thread.
class WindowActivation {
public:
    virtual ~WindowActivation() = default;

    /// \param token the desktop's proof that the user asked for it; empty where there is none.
    virtual void activateIgnoringOtherApps(QWindow& window, const QString& token) = 0;
};

}  // namespace corvellan
