#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <QSize>
#include <QString>
#include <vector>

#include "ScreenshotScene.h"

namespace corvellan::test {

/// One picture of the window: its face, what the session holds, and the layout.
struct ScreenshotState {
    QString name;
    std::function<void(SessionViewModel&)> prepare;
    std::optional<QString> company = std::nullopt;
    double fontScale = 1.5;
    bool isCall = true;
    /// The layout that is asked for after the call has begun; absent leaves the call face as it begins.
    std::optional<QString> layout = std::nullopt;
    /// How often the button that changes the layout is pressed.
    int layoutPresses = 0;
    bool unfoldsBrief = false;
    /// How often the Tab key is pressed.
    int tabs = 0;
    /// Then Space.
    bool pressesSpace = false;
    /// How things stand in the settings.
    std::function<void(SettingsFixture&, Preferences&)> prepareSettings = {};
    /// Between calls: what is done once the window is up, before it takes its size.
    std::function<void(const ScreenshotScene&)> arrange = {};
    bool isLight = false;
    /// Absent leaves the size of the face.
    std::optional<QSize> size = std::nullopt;
    /// How far the form is scrolled, in pages.
    int pages = 0;
    /// The tab that is open; absent leaves the home screen.
    std::optional<QString> tab = std::nullopt;
    /// In place of the main layout, the onboarding at a step, from 0.
    std::optional<int> onboardingStep = std::nullopt;
    /// What the file of the user's note holds.
    std::optional<QString> note = std::nullopt;
    /// How long the screen has been open.
    std::chrono::milliseconds openFor{};
    /// Instead of the main window, the one with this handoff note.
    std::optional<HandoffResponse> handoff = std::nullopt;
};

using ScreenshotStateList = std::vector<ScreenshotState>;

/// The screens that prepare a call: home, calendar, and the window with a handoff note.
[[nodiscard]] ScreenshotStateList preparationStates();
/// The history and the summary of a session.
[[nodiscard]] ScreenshotStateList historyStates();
/// The choice of a buyer to practise with.
[[nodiscard]] ScreenshotStateList trainingStates();
/// The screens that are read and written rather than worked with.
[[nodiscard]] ScreenshotStateList pageScreenshotStates();

/// Every state that a user may get to see.
[[nodiscard]] ScreenshotStateList screenshotStates();

}  // namespace corvellan::test
