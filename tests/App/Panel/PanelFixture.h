#pragma once

#include <gtest/gtest.h>

#include <QQuickItem>

#include <vector>

#include "App/Panel/StealthPanel.h"
#include "Support/SessionFixture.h"
#include "Support/SettingsFixture.h"
#include "Views/HandoffWindowController.h"
#include "Views/ViewParts.h"

namespace corvellan::test {

/// The item of that name among all that stand in `root`, rows of lists included; null when there is none.
inline QQuickItem* itemNamed(QQuickItem* root, const QString& name) {
    if (root->objectName() == name)
        return root;
    for (QQuickItem* const child : root->childItems())
        if (QQuickItem* const found = itemNamed(child, name))
            return found;
    return nullptr;
}

/// Remembers what it was asked, and answers at once, as a desktop that can hide windows unless told otherwise.
class FakeCaptureHiding final : public CaptureHiding {
public:
    void setHidden(const QWindow& /*window*/, bool isHidden) override {
        asked.push_back(isHidden);
        tell(isHidden ? answer : CaptureVisibility::visible);
    }
    [[nodiscard]] CaptureHidingStatus status() const override { return m_status; }

    /// As when the desktop answers late.
    void tell(CaptureVisibility visibility) {
        m_status.visibility = visibility;
        if (onChanged)
            onChanged();
    }

    std::vector<bool> asked;
    /// What asking to hide comes to at first.
    CaptureVisibility answer = CaptureVisibility::hidden;

private:
    CaptureHidingStatus m_status{.offer = CaptureHidingOffer::hides, .explanation = QStringLiteral("It hides.")};
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
    SettingsFixture settings{fixture.preferences};
    StealthPanel panel{{fixture.session(), fixture.preferences, captureHiding, handoffWindow, settings.parts()},
                       settings.desktop.appearance};
};

}  // namespace corvellan::test
