#pragma once

#include <functional>
#include <optional>
#include <QString>
#include <QStringList>

#include "Platform/Permissions.h"

namespace corvellan {

struct SettingsProgram {
    QString program;
    QStringList arguments;

    bool operator==(const SettingsProgram&) const = default;
};

/// The program that decides about the pane on this desktop: its own sound settings, else any volume control.
/// Both panes lead to sound, one to what is recorded, one to what is played: no desktop has a page for the
/// screen that this program could appear on. Empty where nothing fitting is installed.
///
/// \param currentDesktop XDG_CURRENT_DESKTOP: names separated by colons, the closest first.
[[nodiscard]] std::optional<SettingsProgram> settingsProgram(const QString& currentDesktop, PrivacyPane pane,
                                                             const std::function<bool(const QString&)>& isInstalled);

/// Where to look, for people whose desktop has no such program.
[[nodiscard]] QString settingsExplanation(PrivacyPane pane);

}  // namespace corvellan
