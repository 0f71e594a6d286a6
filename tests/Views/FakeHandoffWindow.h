#pragma once

#include <vector>

#include "Models/Briefing.h"
#include "Views/HandoffWindowController.h"

namespace corvellan::test {

/// Remembers what it was asked to show.
class FakeHandoffWindow final : public HandoffWindowController {
public:
    void show(const HandoffResponse& handoff) override { shown.push_back(handoff); }

    std::vector<HandoffResponse> shown;
};

}  // namespace corvellan::test
