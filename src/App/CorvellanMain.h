#pragma once

#include "Base/Clock.h"

namespace corvellan {

/// The process's entry: puts the real parts together, makes one `AppDelegate` and runs the event loop of the
/// application object, which exists already and is a QApplication.
class CorvellanMain {
public:
    /// \param launchedAt when `main` began.
    /// \param endSignals a descriptor that becomes readable when the process is asked to end.
    CorvellanMain(MonotonicTime launchedAt, int endSignals);

    /// Returns when the program ends, with its exit status: at once and with 0 when another instance has
    /// come to the front instead, with 1 when that one doesn't answer.
    [[nodiscard]] int run();

private:
    MonotonicTime m_launchedAt;
    int m_endSignals;
};

}  // namespace corvellan
