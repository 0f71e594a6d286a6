#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QThread>
#include <thread>

#include "Base/SettingsPreferences.h"
#include "SettingsViewFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

using SettingsViewTest = SettingsViewFixture;

// MARK: - General, display, screen context

TEST_F(SettingsViewTest, launchAtLoginIsTheDesktopsOwnList) {
    EXPECT_FALSE(view().launchesAtLogin());
    view().setLaunchesAtLogin(true);
    EXPECT_TRUE(settings.desktop.loginItems.isRegistered);
    EXPECT_TRUE(view().launchesAtLogin());
    settings.desktop.loginItems.isRegistered = false;
    EXPECT_FALSE(view().launchesAtLogin());
}

TEST_F(SettingsViewTest, aRefusedLoginItemShowsTheTruthAgain) {
    settings.desktop.loginItems.failure = Error{TransportError{u"read-only"_s}};
    QSignalSpy changes{&view(), &SettingsView::launchesAtLoginChanged};
    view().setLaunchesAtLogin(true);
    EXPECT_FALSE(view().launchesAtLogin());
    EXPECT_EQ(changes.count(), 1) << "a switch that was pressed has to be set back";
}

TEST_F(SettingsViewTest, theFontSizesAreThreeScales) {
    EXPECT_EQ(SettingsView::fontSizes(), (QStringList{u"Normal"_s, u"Large (1.5x)"_s, u"Extra Large (2x)"_s}));
    QSignalSpy changes{&view(), &SettingsView::fontSizeChanged};
    const std::array scales{1.0, 1.5, 2.0};
    for (int index = 0; index < 3; ++index) {
        view().setFontSizeIndex(index);
        EXPECT_EQ(view().fontSizeIndex(), index);
        EXPECT_EQ(view().fontSizeText(), SettingsView::fontSizes().at(index));
        EXPECT_EQ(session().fontScale(), scales.at(static_cast<std::size_t>(index)));
        EXPECT_EQ(fixture.preferences.number(u"fontScale"_s), scales.at(static_cast<std::size_t>(index)));
    }
    EXPECT_EQ(changes.count(), 3);
}

TEST_F(SettingsViewTest, aScaleThatIsNoneOfTheThreeIsShownAsItIs) {
    session().setFontScale(1.2);
    EXPECT_EQ(view().fontSizeIndex(), -1);
    EXPECT_EQ(view().fontSizeText(), u"1.2x"_s);
    view().setFontSizeIndex(-1);
    view().setFontSizeIndex(3);
    EXPECT_EQ(session().fontScale(), 1.2);
}

TEST_F(SettingsViewTest, sharingTheWindowIsStored) {
    QSignalSpy changes{&view(), &SettingsView::sharesScreenChanged};
    EXPECT_FALSE(view().sharesScreen());
    view().setSharesScreen(true);
    EXPECT_TRUE(view().sharesScreen());
    EXPECT_EQ(fixture.preferences.boolean(u"screenShareEnabled"_s), true);
    EXPECT_EQ(changes.count(), 1);
    session().setIsScreenShareEnabled(false);
    EXPECT_FALSE(view().sharesScreen());
    EXPECT_EQ(changes.count(), 2);
}

TEST(SharingTextTest, aDesktopWithoutWindowsSharesTheWholeScreenAndSaysSo) {
    SessionFixture fixture;
    SettingsFixture desktop{fixture.preferences};
    auto parts = desktop.parts();
    const auto text = [&] { return SettingsView{fixture.session(), fixture.preferences, parts}.sharingText(); };
    EXPECT_TRUE(text().endsWith(u"frames are never written to disk."_s));
    parts.sharesWindows = false;
    EXPECT_TRUE(text().contains(u"the coach sees your whole screen"_s));
}

// MARK: - Voice

TEST_F(SettingsViewTest, theVoiceLineNamesNoSystemThatIsNotThisOne) {
    EXPECT_TRUE(SettingsView::voiceText().contains(u"(premium > enhanced > default)"_s));
    EXPECT_FALSE(SettingsView::voiceText().contains(u"macOS"_s));
    EXPECT_FALSE(view().voiceCaption().contains(u"Spoken Content"_s));
}

TEST_F(SettingsViewTest, theVoiceThatSpeaksIsNamedWithItsEngine) {
    const SpeechVoice plain{.language = u"en-US"_s, .name = u"English (America)"_s};
    const SpeechVoice enhanced{.language = u"en-US"_s, .quality = VoiceQuality::enhanced, .name = u"us1"_s};
    const SpeechVoice british{.language = u"en-GB"_s, .quality = VoiceQuality::premium, .name = u"Kate"_s};
    EXPECT_EQ(SettingsView::speaking({.all = {plain}, .americanEnglish = plain, .engine = u"espeak-ng"_s}),
              u"espeak-ng speaks, with its default voice: no premium or enhanced one is installed."_s);
    EXPECT_EQ(SettingsView::speaking({.all = {plain, british, enhanced}, .americanEnglish = plain, .engine = u"E"_s}),
              u"E speaks, with the voice us1 (enhanced)."_s);
    EXPECT_EQ(SettingsView::speaking({.all = {plain, british}, .americanEnglish = plain, .engine = u"E"_s}),
              u"E speaks, with the voice Kate (premium)."_s);
    EXPECT_EQ(SettingsView::speaking({}),
              u"No speech engine works on this computer. Install the package espeak-ng; until then replies are shown "
              "only."_s);
}

TEST_F(SettingsViewTest, theVoicesAreReadEachTimeTheScreenAppears) {
    auto& speech = settings.desktop.speech;
    speech.answersAtOnce = false;
    EXPECT_EQ(speech.readings, 0) << "nobody has asked yet";
    QSignalSpy changes{&view(), &SettingsView::voiceChanged};
    view().appear();
    settle();
    EXPECT_EQ(view().voiceCaption(), u"Looking for voices..."_s);

    const SpeechVoice plain{.language = u"en-US"_s};
    speech.voices = {.all = {plain}, .americanEnglish = plain, .engine = u"Speech Dispatcher"_s};
    speech.answer();
    settle();
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(view().voiceCaption(), SettingsView::speaking(speech.voices));

    speech.voices = {};
    view().appear();
    settle();
    EXPECT_TRUE(view().voiceCaption().startsWith(u"Speech Dispatcher speaks"_s)) << "until it is known better";
    speech.answer();
    settle();
    EXPECT_EQ(view().voiceCaption(), SettingsView::speaking({}));
    EXPECT_EQ(speech.readings, 2);
}

TEST_F(SettingsViewTest, voicesThatAreToldOnAnotherThreadArriveOnTheMainOne) {
    auto& speech = settings.desktop.speech;
    speech.answersAtOnce = false;
    Qt::HANDLE toldOn = nullptr;
    QObject::connect(
        &view(), &SettingsView::voiceChanged, &view(), [&] { toldOn = QThread::currentThreadId(); },
        Qt::DirectConnection);
    view().appear();
    std::jthread{[&] { speech.answer(); }}.join();
    settle();
    EXPECT_EQ(toldOn, QThread::currentThreadId());
}

TEST_F(SettingsViewTest, voicesThatAreToldAfterTheViewsEndAreForgotten) {
    auto& speech = settings.desktop.speech;
    speech.answersAtOnce = false;
    auto passing = std::make_unique<SettingsView>(session(), fixture.preferences, settings.parts());
    passing->appear();
    speech.answer();
    passing.reset();
    settle();
    EXPECT_EQ(speech.readings, 1);
}

// MARK: - About

TEST_F(SettingsViewTest, aboutTellsVersionAndBuild) {
    EXPECT_EQ(SettingsView::aboutText(),
              u"Corvellan Bram — AI sales coach by Teskara. Invisible during screen share, real-time MEDDIC "
              "tracking and call guidance."_s);
    EXPECT_EQ(view().version(), u"1.2.3"_s);
    EXPECT_EQ(view().build(), u"45"_s);
}

TEST_F(SettingsViewTest, updatesAreCheckedByTheUpdaterIfThereIsOne) {
    FakeUpdater updater;
    EXPECT_FALSE(view().canCheckForUpdates());
    view().checkForUpdates();
    QSignalSpy changes{&view(), &SettingsView::canCheckForUpdatesChanged};
    session().setSparkleUpdater(&updater);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(view().canCheckForUpdates());
    view().checkForUpdates();
    EXPECT_EQ(updater.checks, 1);
    session().setSparkleUpdater(nullptr);
}

// MARK: - Life

TEST_F(SettingsViewTest, aViewMayGoWhileAnswersAreOnTheirWay) {
    auto passing = std::make_unique<SettingsView>(session(), fixture.preferences, settings.parts());
    settings.desktop.notifications.requestGate.close();
    passing->requestNotificationPermission();
    settle();
    passing->appear();
    passing.reset();
    settings.desktop.notifications.requestGate.open();
    settle();
    EXPECT_FALSE(did("notifications.authorization"));
    EXPECT_FALSE(did("permissions.microphoneAuthorization"));
}

TEST_F(SettingsViewTest, whatWasChosenIsThereAtTheNextStart) {
    const QString path = fixture.folder.filePath(u"kept.ini"_s);
    {
        SettingsPreferences stored{path};
        SettingsView chosen{session(), stored, settings.parts()};
        chosen.setServerMode(ServerMode::custom);
        chosen.setCustomServerURL(u"ws://own.test/ws?a=1,2;3"_s);
        chosen.setMeetingReminders(false);
    }
    SettingsPreferences stored{path};
    SettingsView again{session(), stored, settings.parts()};
    EXPECT_EQ(again.serverMode(), ServerMode::custom);
    EXPECT_EQ(again.customServerURL(), u"ws://own.test/ws?a=1,2;3"_s);
    EXPECT_FALSE(again.meetingReminders());
}

}  // namespace

}  // namespace corvellan::test
