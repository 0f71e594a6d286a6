#pragma once

namespace corvellan {

struct HandoffResponse;

/// Shows the handoff notes of a company in a window of their own. Main thread.
class HandoffWindowController {
public:
    virtual ~HandoffWindowController() = default;

    virtual void show(const HandoffResponse& handoff) = 0;
};

}  // namespace corvellan
