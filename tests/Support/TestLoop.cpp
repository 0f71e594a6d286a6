#include "TestLoop.h"

namespace corvellan::test {

namespace {

Executor* executor = nullptr;

}  // namespace

Executor& mainExecutor() {
    return *executor;
}

void setMainExecutor(Executor& main) {
    executor = &main;
}

void settle() {
    // One posted round trip shows that everything before it has run; what that posted needs another.
    constexpr int rounds = 20;
    for (int i = 0; i < rounds; ++i) {
        bool hasCome = false;
        executor->post([&] { hasCome = true; });
        spinUntil([&] { return hasCome; });
        QCoreApplication::processEvents();
    }
}

void settleAfter(ManualClock& clock, std::chrono::nanoseconds step) {
    const auto end = clock.now() + step;
    settle();
    while (const auto next = clock.nextDeadline()) {
        if (*next > end)
            break;
        clock.advance(*next > clock.now() ? *next - clock.now() : std::chrono::nanoseconds{0});
        settle();
    }
    if (clock.now() < end)
        clock.advance(end - clock.now());
    settle();
}

}  // namespace corvellan::test
