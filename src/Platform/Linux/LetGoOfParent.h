#pragma once

#include <unistd.h>
#include <csignal>

namespace corvellan {

/// To be run in a child before another program takes it over, so that nothing of this program's own ways is
/// left to it: it ignores and blocks no signal, and belongs to no terminal of ours. Async-signal-safe.
inline void letGoOfParent() {
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGPIPE, SIG_DFL);
    ::setsid();
}

}  // namespace corvellan
