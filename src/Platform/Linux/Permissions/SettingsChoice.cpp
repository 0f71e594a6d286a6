#include "SettingsChoice.h"

#include <array>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

/// A desktop's own settings program, and how it is led to a pane.
struct DesktopRow {
    QStringView desktop;
    QStringView program;
    QStringView microphone;
    QStringView screenCapture;
};

/// In the order in which they are tried; without a desktop, for every one.
constexpr std::array rows{
    DesktopRow{u"GNOME", u"gnome-control-center", u"sound", u"sound"},
    DesktopRow{u"Unity", u"unity-control-center", u"sound", u"sound"},
    DesktopRow{u"Budgie", u"budgie-control-center", u"sound", u"sound"},
    DesktopRow{u"KDE", u"systemsettings", u"kcm_pulseaudio", u"kcm_pulseaudio"},
    DesktopRow{u"KDE", u"systemsettings5", u"kcm_pulseaudio", u"kcm_pulseaudio"},
    DesktopRow{u"X-Cinnamon", u"cinnamon-settings", u"sound", u"sound"},
    DesktopRow{u"MATE", u"mate-volume-control", u"--page=input", u"--page=output"},
    // The tabs of these two, counted from 1, are playback, recording, output devices, input devices.
    DesktopRow{u"LXQt", u"pavucontrol-qt", u"--tab=4", u"--tab=3"},
    DesktopRow{u"", u"pavucontrol", u"--tab=4", u"--tab=3"},
    DesktopRow{u"", u"pavucontrol-qt", u"--tab=4", u"--tab=3"},
};

}  // namespace

std::optional<SettingsProgram> settingsProgram(const QString& currentDesktop, PrivacyPane pane,
                                               const std::function<bool(const QString&)>& isInstalled) {
    // The empty name at the end is that of the rows for every desktop.
    for (const QString& desktop : currentDesktop.split(u':', Qt::SkipEmptyParts) + QStringList{QString{}}) {
        for (const auto& row : rows) {
            const QString program = row.program.toString();
            if (desktop.compare(row.desktop, Qt::CaseInsensitive) != 0 || !isInstalled(program))
                continue;
            switch (pane) {
            case PrivacyPane::microphone: return SettingsProgram{program, {row.microphone.toString()}};
            case PrivacyPane::screenCapture: return SettingsProgram{program, {row.screenCapture.toString()}};
            }
        }
    }
    return std::nullopt;
}

QString settingsExplanation(PrivacyPane pane) {
    switch (pane) {
    case PrivacyPane::microphone:
        return u"Corvellan Bram listens to the default input of your desktop's sound settings. Choose a microphone "
               "there and make sure that it is not muted."_s;
    case PrivacyPane::screenCapture:
        return u"Corvellan Bram listens to the default output of your desktop's sound settings. Choose the output "
               "there that your calls are played on. On Wayland, pictures of the screen also need your desktop's "
               "portal (xdg-desktop-portal)."_s;
    }
    Q_UNREACHABLE();
}

}  // namespace corvellan
