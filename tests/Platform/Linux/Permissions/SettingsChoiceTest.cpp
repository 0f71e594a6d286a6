#include "Platform/Linux/Permissions/SettingsChoice.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace corvellan {
namespace {

/// The whole command line that is chosen; empty for none.
QString chosen(const QString& desktop, PrivacyPane pane, const QStringList& installed) {
    const auto choice =
        settingsProgram(desktop, pane, [&](const QString& program) { return installed.contains(program); });
    return choice ? (QStringList{choice->program} + choice->arguments).join(u' ') : QString{};
}

const QStringList everything{u"gnome-control-center"_s, u"unity-control-center"_s, u"budgie-control-center"_s,
                             u"systemsettings"_s,       u"systemsettings5"_s,      u"cinnamon-settings"_s,
                             u"mate-volume-control"_s,  u"pavucontrol"_s,          u"pavucontrol-qt"_s};

TEST(SettingsChoiceTest, everyDesktopHasItsOwnPage) {
    struct Row {
        QString desktop;
        QString microphone;
        QString screenCapture;
    };
    for (const auto& [desktop, microphone, screenCapture] :
         {Row{u"GNOME"_s, u"gnome-control-center sound"_s, u"gnome-control-center sound"_s},
          Row{u"ubuntu:GNOME"_s, u"gnome-control-center sound"_s, u"gnome-control-center sound"_s},
          Row{u"Budgie:GNOME"_s, u"budgie-control-center sound"_s, u"budgie-control-center sound"_s},
          Row{u"KDE"_s, u"systemsettings kcm_pulseaudio"_s, u"systemsettings kcm_pulseaudio"_s},
          Row{u"X-Cinnamon"_s, u"cinnamon-settings sound"_s, u"cinnamon-settings sound"_s},
          Row{u"MATE"_s, u"mate-volume-control --page=input"_s, u"mate-volume-control --page=output"_s},
          Row{u"LXQt"_s, u"pavucontrol-qt --tab=4"_s, u"pavucontrol-qt --tab=3"_s},
          Row{u"XFCE"_s, u"pavucontrol --tab=4"_s, u"pavucontrol --tab=3"_s},
          Row{u"sway"_s, u"pavucontrol --tab=4"_s, u"pavucontrol --tab=3"_s},
          Row{u""_s, u"pavucontrol --tab=4"_s, u"pavucontrol --tab=3"_s}}) {
        EXPECT_EQ(chosen(desktop, PrivacyPane::microphone, everything), microphone) << desktop.toStdString();
        EXPECT_EQ(chosen(desktop, PrivacyPane::screenCapture, everything), screenCapture) << desktop.toStdString();
    }
}

TEST(SettingsChoiceTest, theDesktopsNameIsReadInEitherCase) {
    EXPECT_EQ(chosen(u"gnome"_s, PrivacyPane::microphone, everything), u"gnome-control-center sound"_s);
}

TEST(SettingsChoiceTest, anOlderNameOfTheSameProgramServesToo) {
    EXPECT_EQ(chosen(u"KDE"_s, PrivacyPane::microphone, {u"systemsettings5"_s}), u"systemsettings5 kcm_pulseaudio"_s);
}

TEST(SettingsChoiceTest, theSecondNameCountsWhereTheFirstHasNothing) {
    EXPECT_EQ(chosen(u"Budgie:GNOME"_s, PrivacyPane::microphone, {u"gnome-control-center"_s}),
              u"gnome-control-center sound"_s);
}

TEST(SettingsChoiceTest, withoutTheDesktopsOwnAnyVolumeControlServes) {
    EXPECT_EQ(chosen(u"GNOME"_s, PrivacyPane::microphone, {u"pavucontrol-qt"_s}), u"pavucontrol-qt --tab=4"_s);
    EXPECT_EQ(chosen(u"::"_s, PrivacyPane::screenCapture, {u"pavucontrol"_s}), u"pavucontrol --tab=3"_s);
}

TEST(SettingsChoiceTest, anotherDesktopsProgramIsNotStarted) {
    EXPECT_EQ(chosen(u"XFCE"_s, PrivacyPane::microphone, {u"gnome-control-center"_s, u"systemsettings"_s}), QString{});
    EXPECT_EQ(chosen(u"GNOME"_s, PrivacyPane::microphone, {}), QString{});
}

TEST(SettingsChoiceTest, theExplanationNamesTheSideConcerned) {
    EXPECT_TRUE(settingsExplanation(PrivacyPane::microphone).contains(u"default input"_s));
    EXPECT_TRUE(settingsExplanation(PrivacyPane::screenCapture).contains(u"default output"_s));
}

}  // namespace
}  // namespace corvellan
