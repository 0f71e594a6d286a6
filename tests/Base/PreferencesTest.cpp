#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "Base/DebugLog.h"
#include "Base/SettingsPreferences.h"
#include "Support/ManualClock.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

TEST(SettingsPreferencesTest, keepsValuesOverARestart) {
    const QTemporaryDir folder;
    const auto path = folder.filePath(u"deep/bram.ini"_s);
    {
        SettingsPreferences preferences{path};
        preferences.setBoolean(u"autoStartOnCall"_s, false);
        preferences.setNumber(u"fontScale"_s, 1.5);
        preferences.setString(u"customServerURL"_s, u"ws://host:1/ws, with a comma"_s);
    }
    const SettingsPreferences preferences{path};
    EXPECT_EQ(preferences.boolean(u"autoStartOnCall"_s), false);
    EXPECT_EQ(preferences.number(u"fontScale"_s), 1.5);
    EXPECT_EQ(preferences.string(u"customServerURL"_s), u"ws://host:1/ws, with a comma"_s);
}

TEST(SettingsPreferencesTest, readsWhatIsOfAnotherTypeAsAbsent) {
    const QTemporaryDir folder;
    SettingsPreferences preferences{folder.filePath(u"bram.ini"_s)};
    preferences.setString(u"word"_s, u"yes"_s);
    EXPECT_EQ(preferences.boolean(u"word"_s), std::nullopt);
    EXPECT_EQ(preferences.number(u"word"_s), std::nullopt);
    EXPECT_EQ(preferences.number(u"absent"_s), std::nullopt);
    EXPECT_EQ(preferences.boolean(u"absent"_s), std::nullopt);
    EXPECT_EQ(preferences.string(u"absent"_s), std::nullopt);
}

TEST(SettingsPreferencesTest, aDamagedFileCountsAsEmpty) {
    const QTemporaryDir folder;
    const auto path = folder.filePath(u"bram.ini"_s);
    {
        QFile file{path};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("\x00\xff[[[===\n%%%", 12);
    }
    SettingsPreferences preferences{path};
    EXPECT_EQ(preferences.number(u"fontScale"_s), std::nullopt);
    preferences.setNumber(u"fontScale"_s, 2);
    EXPECT_EQ(preferences.number(u"fontScale"_s), 2);
}

TEST(DebugLogTest, appendsALineAnEntryAndMakesTheFile) {
    const QTemporaryDir folder;
    const auto path = folder.filePath(u"corvellan-debug.log"_s);
    const ManualClock clock;
    const DebugLog log{path, clock};
    log.write(u"WS connected"_s);
    log.write(u"Pipeline ready — listening"_s);
    QFile file{path};
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(file.readAll()),
              u"2026-03-02 10:00:00 +0000 WS connected\n2026-03-02 10:00:00 +0000 Pipeline ready — listening\n"_s);
}

TEST(DebugLogTest, ignoresAFileThatCannotBeWritten) {
    const ManualClock clock;
    const DebugLog log{u"/nonexistent-folder/corvellan-debug.log"_s, clock};
    log.write(u"nothing happens"_s);
    EXPECT_FALSE(QFile::exists(u"/nonexistent-folder/corvellan-debug.log"_s));
}

}  // namespace
}  // namespace corvellan::test
