#include "Platform/Linux/Permissions/XdgLoginItems.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace corvellan {
namespace {

class XdgLoginItemsTest : public testing::Test {
protected:
    XdgLoginItemsTest() {
        makeProgram(places.executablePath);
        makeProgram(m_folder.filePath(u"bin/other"_s));
    }

    static void makeProgram(const QString& path) {
        write(path, "#!/bin/sh\n");
        QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
    }
    static void write(const QString& path, const QByteArray& bytes) {
        QDir{}.mkpath(QFileInfo{path}.path());
        QFile file{path};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        file.write(bytes);
    }
    static QByteArray read(const QString& path) {
        QFile file{path};
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
    }
    [[nodiscard]] XdgLoginItems items() const { return XdgLoginItems{places}; }
    [[nodiscard]] QByteArray goodEntry() const {
        return "[Desktop Entry]\nType=Application\nExec=" + places.executablePath.toUtf8() + "\n";
    }
    [[nodiscard]] QString entryIn(const QString& configFolder) const {
        return configFolder + u"/autostart/com.teskara.CorvellanBram.desktop"_s;
    }

    QTemporaryDir m_folder;
    AutostartPlaces places{.configHome = m_folder.filePath(u"config"_s),
                           .configDirs = {m_folder.filePath(u"xdg1"_s), m_folder.filePath(u"xdg2"_s)},
                           .currentDesktop = {u"GNOME"_s},
                           .executablePath = m_folder.filePath(u"bin/50% \"bram\""_s)};
    const QString own = entryIn(places.configHome);
    const QString systemWide = entryIn(m_folder.filePath(u"xdg2"_s));
};

TEST_F(XdgLoginItemsTest, isOffWhereThereIsNoEntry) {
    EXPECT_FALSE(items().isEnabled());
}

TEST_F(XdgLoginItemsTest, registeringMakesFoldersAndEntry) {
    ASSERT_TRUE(items().registerItem());
    EXPECT_TRUE(items().isEnabled());
    EXPECT_TRUE(QFileInfo{own}.isFile());
    // Nothing else is left beside it.
    EXPECT_EQ(QDir{QFileInfo{own}.path()}.entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST_F(XdgLoginItemsTest, unregisteringRemovesTheEntry) {
    ASSERT_TRUE(items().registerItem());
    ASSERT_TRUE(items().unregisterItem());
    EXPECT_FALSE(QFileInfo::exists(own));
    EXPECT_FALSE(items().isEnabled());
    EXPECT_TRUE(items().unregisterItem());
}

TEST_F(XdgLoginItemsTest, anEntryThatWasSwitchedOffElsewhereIsOff) {
    for (const auto* line : {"Hidden=true", "X-GNOME-Autostart-enabled=false", "OnlyShowIn=KDE;", "NotShowIn=GNOME;",
                             "TryExec=/nowhere/bram"}) {
        write(own, goodEntry() + line + "\n");
        EXPECT_FALSE(items().isEnabled()) << line;
    }
    for (const auto* line :
         {"Hidden=false", "X-GNOME-Autostart-enabled=true", "OnlyShowIn=KDE;GNOME;", "NotShowIn=KDE;", "TryExec=sh"}) {
        // A name needs no quotes and is looked for in the path.
        write(own, "[Desktop Entry]\nExec=sh\n" + QByteArray{line} + "\n");
        EXPECT_TRUE(items().isEnabled()) << line;
    }
}

TEST_F(XdgLoginItemsTest, registeringSwitchesItOnAgain) {
    write(own, goodEntry() + "Hidden=true\n");
    ASSERT_TRUE(items().registerItem());
    EXPECT_TRUE(items().isEnabled());
}

TEST_F(XdgLoginItemsTest, isOffWhenItsProgramIsGoneUntilItIsRegisteredAnew) {
    ASSERT_TRUE(items().registerItem());
    ASSERT_TRUE(QFile::rename(places.executablePath, m_folder.filePath(u"bin/moved"_s)));
    EXPECT_FALSE(items().isEnabled());
    places.executablePath = m_folder.filePath(u"bin/moved"_s);
    EXPECT_FALSE(items().isEnabled());
    ASSERT_TRUE(items().registerItem());
    EXPECT_TRUE(items().isEnabled());
}

TEST_F(XdgLoginItemsTest, aProgramThatCannotBeRunIsNone) {
    ASSERT_TRUE(items().registerItem());
    QFile::setPermissions(places.executablePath, QFile::ReadOwner);
    EXPECT_FALSE(items().isEnabled());
    write(own, "[Desktop Entry]\nExec=" + m_folder.path().toUtf8() + "\n");
    EXPECT_FALSE(items().isEnabled()) << "a folder";
    write(own, "[Desktop Entry]\nExec=bin/other\n");
    EXPECT_FALSE(items().isEnabled()) << "a relative path";
}

TEST_F(XdgLoginItemsTest, anEntryOfTheSystemCounts) {
    write(systemWide, "[Desktop Entry]\nExec=" + m_folder.filePath(u"bin/other"_s).toUtf8() + "\n");
    EXPECT_TRUE(items().isEnabled());
    // A more important folder hides it.
    write(entryIn(m_folder.filePath(u"xdg1"_s)), "[Desktop Entry]\nHidden=true\n");
    EXPECT_FALSE(items().isEnabled());
    // And the user's own is the most important.
    ASSERT_TRUE(items().registerItem());
    EXPECT_TRUE(items().isEnabled());
}

TEST_F(XdgLoginItemsTest, unregisteringHidesAnEntryOfTheSystem) {
    write(systemWide, "[Desktop Entry]\nExec=" + m_folder.filePath(u"bin/other"_s).toUtf8() + "\n");
    ASSERT_TRUE(items().unregisterItem());
    EXPECT_FALSE(items().isEnabled());
    EXPECT_TRUE(read(own).contains("Hidden=true"));
    EXPECT_FALSE(read(systemWide).contains("Hidden"));
    ASSERT_TRUE(items().registerItem());
    EXPECT_TRUE(items().isEnabled());
}

TEST_F(XdgLoginItemsTest, aBrokenEntryIsOff) {
    for (const QByteArray& bytes :
         {QByteArray{}, QByteArray{"Exec=sh"}, QByteArray{"[Desktop Entry]\nExec=\"sh\n"},
          QByteArray{"\xFF\x00\xFE", 3}, "[Desktop Entry]\nExec=sh\n" + QByteArray(100'000, '#')}) {
        write(own, bytes);
        EXPECT_FALSE(items().isEnabled()) << bytes.left(30).toStdString();
    }
    ASSERT_TRUE(items().registerItem());
    EXPECT_TRUE(items().isEnabled());
}

TEST_F(XdgLoginItemsTest, whatIsNoFileInItsPlaceIsOffAndNeverWaitedFor) {
    QDir{}.mkpath(QFileInfo{own}.path());
    ASSERT_EQ(::mkfifo(own.toUtf8().constData(), 0600), 0);
    EXPECT_FALSE(items().isEnabled());
    ASSERT_TRUE(QFile::remove(own));
    ASSERT_TRUE(QFile::link(m_folder.filePath(u"nowhere"_s), own));
    EXPECT_FALSE(items().isEnabled());
    ASSERT_TRUE(items().unregisterItem());
    EXPECT_FALSE(QFileInfo{own}.isSymLink());
}

TEST_F(XdgLoginItemsTest, aFolderThatCannotBeWrittenIsAFailureWithASentence) {
    // A file where the folder should be: that stops the superuser too.
    write(places.configHome, "in the way");
    const auto registered = items().registerItem();
    ASSERT_FALSE(registered);
    EXPECT_FALSE(registered.error().errorDescription().isEmpty());
    EXPECT_FALSE(items().isEnabled());
}

TEST_F(XdgLoginItemsTest, aPathThatNoEntryCanNameIsAFailure) {
    places.executablePath = m_folder.filePath(u"a=b"_s);
    makeProgram(places.executablePath);
    ASSERT_FALSE(items().registerItem());
    EXPECT_FALSE(QFileInfo::exists(own));
}

TEST_F(XdgLoginItemsTest, takesItsPlacesFromTheEnvironment) {
    qputenv("XDG_CONFIG_HOME", places.configHome.toUtf8());
    qputenv("XDG_CONFIG_DIRS", places.configDirs.join(u':').toUtf8());
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    const auto current = AutostartPlaces::current();
    for (const auto* name : {"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "XDG_CURRENT_DESKTOP"})
        qunsetenv(name);
    EXPECT_EQ(current.configHome, places.configHome);
    EXPECT_EQ(current.configDirs, places.configDirs);
    EXPECT_EQ(current.currentDesktop, (QStringList{u"ubuntu"_s, u"GNOME"_s}));
    EXPECT_TRUE(current.executablePath.endsWith(u"LinuxPermissionsTest"_s));
}

}  // namespace
}  // namespace corvellan
