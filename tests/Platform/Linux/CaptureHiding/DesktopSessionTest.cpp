#include "Platform/Linux/DesktopSession/DesktopSession.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

using Kind = DesktopSession::Kind;

/// The variables that tell of a desktop, as the test wants them, and as they were when it ends.
class DesktopSessionTest : public testing::Test {
protected:
    DesktopSessionTest() {
        for (const char* name : {"WAYLAND_DISPLAY", "XDG_SESSION_TYPE", "XDG_CURRENT_DESKTOP", "XDG_RUNTIME_DIR",
                                 "HYPRLAND_INSTANCE_SIGNATURE", "NIRI_SOCKET"}) {
            m_before[name] = qEnvironmentVariableIsSet(name) ? std::optional{qgetenv(name)} : std::nullopt;
            qunsetenv(name);
        }
        qputenv("XDG_RUNTIME_DIR", folder.path().toUtf8());
    }
    ~DesktopSessionTest() override {
        for (const auto& [name, value] : m_before)
            if (value)
                qputenv(name, *value);
            else
                qunsetenv(name);
    }

    QString touch(const QString& path) {
        QDir{folder.path()}.mkpath(QFileInfo{path}.path());
        QFile file{folder.filePath(path)};
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    }

    QTemporaryDir folder;

private:
    std::map<const char*, std::optional<QByteArray>> m_before;
};

TEST_F(DesktopSessionTest, withoutWaylandItIsX11) {
    EXPECT_EQ(DesktopSession::current().kind(), Kind::x11);
}

TEST_F(DesktopSessionTest, anXDisplayWithinAWaylandSessionIsX11) {
    qputenv("XDG_SESSION_TYPE", "wayland");
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    qputenv("HYPRLAND_INSTANCE_SIGNATURE", "abc");
    touch(u"hypr/abc/.socket.sock"_s);
    EXPECT_EQ(DesktopSession::current().kind(), Kind::x11);
}

TEST_F(DesktopSessionTest, hyprlandIsWhereItsSocketIs) {
    qputenv("WAYLAND_DISPLAY", "wayland-1");
    qputenv("HYPRLAND_INSTANCE_SIGNATURE", "abc_1_2");
    const QString socket = touch(u"hypr/abc_1_2/.socket.sock"_s);
    EXPECT_EQ(DesktopSession::current().kind(), Kind::hyprland);
    EXPECT_EQ(DesktopSession::current().hyprlandSocket, socket);
}

TEST_F(DesktopSessionTest, aSignatureLeftFromAnotherSessionIsNoHyprland) {
    qputenv("WAYLAND_DISPLAY", "wayland-1");
    qputenv("HYPRLAND_INSTANCE_SIGNATURE", "gone");
    EXPECT_EQ(DesktopSession::current().kind(), Kind::otherWayland);
    qputenv("HYPRLAND_INSTANCE_SIGNATURE", "../elsewhere");
    touch(u"elsewhere/.socket.sock"_s);
    EXPECT_EQ(DesktopSession::current().kind(), Kind::otherWayland) << "a signature is no path";
}

TEST_F(DesktopSessionTest, niriIsWhereItsSocketIs) {
    qputenv("WAYLAND_DISPLAY", "wayland-1");
    qputenv("NIRI_SOCKET", "/nowhere/niri.sock");
    EXPECT_EQ(DesktopSession::current().kind(), Kind::otherWayland);
    qputenv("NIRI_SOCKET", touch(u"niri.sock"_s).toUtf8());
    EXPECT_EQ(DesktopSession::current().kind(), Kind::niri);
}

TEST_F(DesktopSessionTest, plasmaIsKWin) {
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    EXPECT_EQ(DesktopSession::current().kind(), Kind::kwin);
}

TEST_F(DesktopSessionTest, anyOtherDesktopIsKnownByName) {
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    EXPECT_EQ(DesktopSession::current().kind(), Kind::otherWayland);
    EXPECT_EQ(DesktopSession::current().desktopNames, (QStringList{u"ubuntu"_s, u"GNOME"_s}));
}

}  // namespace

}  // namespace corvellan::test
