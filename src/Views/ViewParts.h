#pragma once

#include <optional>
#include <QString>

#include "Models/MemoryStore.h"
#include "SettingsView.h"
#include "Shell/Stealth/CaptureSelfTest.h"

namespace corvellan {

class CaptureHiding;
class HandoffWindowController;
class Preferences;
class SessionViewModel;

/// What the screens are made of; all of it outlives them.
struct ViewParts {
    SessionViewModel& session;
    Preferences& preferences;
    CaptureHiding& captureHiding;
    HandoffWindowController& handoffWindowController;
    SettingsParts settings;
    /// Absent where nothing can picture the screen: then the window can't be looked for in captures.
    std::optional<CaptureSelfTest::Means> selfTest = std::nullopt;
    /// The file of the user's note.
    QString memoryFile = MemoryStore::filePath();
};

}  // namespace corvellan
