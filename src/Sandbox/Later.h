#pragma once

#include <functional>
#include <QObject>
#include <QPointer>

#include "Base/Clock.h"
#include "Base/Executor.h"

namespace corvellan::sandbox {

/// Runs `work` on the calling thread's executor after `delay` on the clock, unless `context` has gone by then.
inline void later(Clock& clock, std::chrono::nanoseconds delay, QObject* context, std::function<void()> work) {
    Executor& executor = *Executor::current();
    clock.callAt(clock.now() + delay, [&executor, guard = QPointer<QObject>{context}, work = std::move(work)] {
        executor.post([guard, work] {
            if (guard)
                work();
        });
    });
}

}  // namespace corvellan::sandbox
