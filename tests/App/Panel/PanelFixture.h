#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "App/Panel/StealthPanel.h"
#include "Support/SessionFixture.h"
#include "Views/HandoffWindowController.h"

namespace corvellan::test {

/// Remembers what it was asked, and answers as a desktop that can hide windows.
class FakeCaptureHiding final : public CaptureHiding {
public:
    CaptureVisibility setHidden(QWindow& /*window*/, bool isHidden) override {
        asked.push_back(isHidden);
        return isHidden ? CaptureVisibility::hidden : CaptureVisibility::visible;
    }

    std::vector<bool> asked;
};

class IgnoredHandoffWindow final : public HandoffWindowController {
public:
    void show(const HandoffResponse& /*handoff*/) override {}
};

/// A panel over a session of fakes.
class PanelFixture : public testing::Test {
protected:
    SessionFixture fixture;
    FakeCaptureHiding captureHiding;
    IgnoredHandoffWindow handoffWindow;
    StealthPanel panel{{fixture.session(), fixture.preferences, captureHiding, handoffWindow}};
};

}  // namespace corvellan::test
