#include "Platform/Linux/Permissions/DesktopSettings.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "Support/FakeDesktop.h"
#include "Support/TestLoop.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

/// With nothing to be found in the path but what the test puts there.
class DesktopSettingsTest : public testing::Test {
protected:
    DesktopSettingsTest() {
        qputenv("PATH", m_folder.path().toUtf8());
        qputenv("XDG_CURRENT_DESKTOP", "MATE");
    }
    ~DesktopSettingsTest() override {
        qputenv("PATH", m_path);
        qunsetenv("XDG_CURRENT_DESKTOP");
    }

    void install(const QString& program, const QByteArray& script) const {
        QFile file{m_folder.filePath(program)};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(script);
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }
    [[nodiscard]] QByteArray started() const {
        QFile file{m_folder.filePath(u"started"_s)};
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
    }
    [[nodiscard]] QByteArray recorder() const {
        return "#!/bin/sh\necho \"$0 $*\" > " + m_folder.path().toUtf8() + "/started\n";
    }

    QTemporaryDir m_folder;
    const QByteArray m_path = qgetenv("PATH");
    CallLog log;
    FakeAlertPresenter alerts{log};
    DesktopSettings settings{alerts};
};

TEST_F(DesktopSettingsTest, startsTheDesktopsOwnProgramOnTheRightPage) {
    install(u"mate-volume-control"_s, recorder());
    settings.openPrivacyPane(PrivacyPane::screenCapture);
    ASSERT_TRUE(spinUntil([&] { return started().endsWith('\n'); }));
    EXPECT_EQ(started(), m_folder.path().toUtf8() + "/mate-volume-control --page=output\n");
    EXPECT_TRUE(alerts.alerts.empty());
}

TEST_F(DesktopSettingsTest, tellsWhereToLookWhereNothingIsInstalled) {
    settings.openPrivacyPane(PrivacyPane::microphone);
    ASSERT_EQ(alerts.alerts.size(), 1U);
    EXPECT_TRUE(alerts.alerts[0].informativeText.contains(u"default input"_s));
    EXPECT_EQ(alerts.alerts[0].buttonTitles, std::vector{u"OK"_s});
    alerts.press(0);
    settle();
}

TEST_F(DesktopSettingsTest, aProgramThatCannotBeStartedShowsNothing) {
    install(u"mate-volume-control"_s, "#!/nowhere/interpreter\n");
    settings.openPrivacyPane(PrivacyPane::microphone);
    settle();
    EXPECT_TRUE(alerts.alerts.empty());
}

}  // namespace
}  // namespace corvellan::test
