#pragma once

#include <QString>
#include <QStringList>

#include "Platform/LoginItems.h"

namespace corvellan {

/// Where an autostart entry may stand, and what decides about it.
struct AutostartPlaces {
    /// XDG_CONFIG_HOME, which the user's own entry goes into.
    QString configHome;
    /// XDG_CONFIG_DIRS, the most important first.
    QStringList configDirs;
    /// The names in XDG_CURRENT_DESKTOP.
    QStringList currentDesktop;
    /// The program that is to be started: an absolute path.
    QString executablePath;

    /// Those of this process.
    [[nodiscard]] static AutostartPlaces current();
};

/// The program as a desktop entry of the autostart folders. The first folder that holds one decides; an entry
/// that a desktop would not start (hidden, switched off, for other desktops, its program gone) counts as off.
/// When the program was moved, the next registration names its new place.
class XdgLoginItems final : public LoginItems {
public:
    explicit XdgLoginItems(AutostartPlaces places = AutostartPlaces::current()) : m_places(std::move(places)) {}

    [[nodiscard]] bool isEnabled() const override;
    /// Writes the user's entry anew, at once or not at all.
    std::expected<void, Error> registerItem() override;
    /// Removes the user's entry; where the system has one, writes an entry that hides it.
    std::expected<void, Error> unregisterItem() override;

private:
    [[nodiscard]] QString ownPath() const;
    [[nodiscard]] std::expected<void, Error> writeOwn(const QByteArray& entry) const;

    AutostartPlaces m_places;
};

}  // namespace corvellan
