#include "Platform/Linux/Permissions/DesktopPermissionSource.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QTcpServer>
#include <QTemporaryDir>

#include "Base/Clock.h"
#include "Platform/Linux/Permissions/ScreenCaptureProbe.h"
#include "Platform/Linux/PulseAudioInputs.h"
#include "Support/PrivatePulse.h"
#include "Support/TestLoop.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

/// What a desktop's portal shows of itself on the bus.
class StandInPortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Screenshot")
    Q_PROPERTY(uint version READ version)

public:
    [[nodiscard]] static uint version() { return 2; }
};

class DesktopPermissionSourceTest : public testing::Test {
protected:
    ~DesktopPermissionSourceTest() override { qunsetenv("WAYLAND_DISPLAY"); }

    CaptureAuthorization microphone() { return complete(source.microphoneAuthorization()); }
    bool request() { return complete(source.requestMicrophoneAccess()); }
    /// Empty when it can be had, else the sentence.
    QString content() {
        const auto result = complete(source.shareableContent());
        return result ? QString{} : result.error().errorDescription();
    }

    WorkerThread worker{"worker"};
    SystemClock clock;
    OwnSpeech ownSpeech;
    PulseAudioInputs inputs{clock, ownSpeech};
    DesktopPermissionSource source{worker.executor(), inputs, QDBusConnection::sessionBus()};
};

TEST_F(DesktopPermissionSourceTest, withAMicrophoneItIsAuthorizedAndARequestSucceeds) {
    PrivatePulse pulse;
    EXPECT_EQ(microphone(), CaptureAuthorization::authorized);
    EXPECT_TRUE(request());
}

TEST_F(DesktopPermissionSourceTest, aRequestLeavesNothingOpen) {
    PrivatePulse pulse;
    const auto isRecording = [&] {
        return pulse.control({u"list"_s, u"source-outputs"_s}).contains("application.name = \"Corvellan Bram\"");
    };
    {
        const auto open = complete(inputs.open(AudioInputKind::microphone, {}));
        ASSERT_TRUE(open);
        ASSERT_TRUE(isRecording());
    }
    ASSERT_TRUE(request());
    EXPECT_TRUE(spinUntil([&] { return !isRecording(); }));
}

TEST_F(DesktopPermissionSourceTest, aMonitorIsNoMicrophone) {
    PrivatePulse pulse{PrivatePulse::speakers() + "set-default-source spk.monitor\n"};
    EXPECT_EQ(microphone(), CaptureAuthorization::denied);
    EXPECT_FALSE(request());
}

TEST_F(DesktopPermissionSourceTest, noSourceAtAllIsDenied) {
    PrivatePulse pulse{""};
    EXPECT_EQ(microphone(), CaptureAuthorization::denied);
    EXPECT_FALSE(request());
}

TEST_F(DesktopPermissionSourceTest, noServerIsNotDetermined) {
    PrivatePulse pulse;
    pulse.kill();
    EXPECT_EQ(microphone(), CaptureAuthorization::notDetermined);
    EXPECT_FALSE(request());
}

TEST_F(DesktopPermissionSourceTest, aServerThatNeverAnswersIsNotDetermined) {
    PrivatePulse pulse;
    pulse.freeze();
    EXPECT_EQ(microphone(), CaptureAuthorization::notDetermined);
    EXPECT_FALSE(request());
}

TEST_F(DesktopPermissionSourceTest, aServerThatRefusesThisProgramIsRestricted) {
    QTcpServer free;
    ASSERT_TRUE(free.listen(QHostAddress::LocalHost));
    const auto port = QByteArray::number(free.serverPort());
    free.close();
    QTemporaryDir elsewhere;
    PrivatePulse pulse{PrivatePulse::usual() + "load-module module-native-protocol-tcp listen=127.0.0.1 port=" + port +
                       "\n"};
    // Over the network the server wants its cookie, and this is another.
    qputenv("PULSE_SERVER", "tcp:127.0.0.1:" + port);
    qputenv("PULSE_COOKIE", elsewhere.filePath(u"cookie"_s).toUtf8());
    EXPECT_EQ(microphone(), CaptureAuthorization::restricted);
    EXPECT_FALSE(request());
}

TEST_F(DesktopPermissionSourceTest, everyAnswerIsReadAfresh) {
    PrivatePulse pulse;
    ASSERT_EQ(microphone(), CaptureAuthorization::authorized);
    pulse.kill();
    ASSERT_EQ(microphone(), CaptureAuthorization::notDetermined);
    pulse.configure(PrivatePulse::speakers());
    pulse.start();
    EXPECT_EQ(microphone(), CaptureAuthorization::denied);
}

TEST_F(DesktopPermissionSourceTest, soundAndScreenCanBeCapturedOnX11) {
    PrivatePulse pulse;
    EXPECT_EQ(content(), QString{});
}

TEST_F(DesktopPermissionSourceTest, withoutSoundNothingCanBeShared) {
    PrivatePulse pulse;
    pulse.kill();
    EXPECT_TRUE(content().contains(u"sound service does not answer"_s)) << content().toStdString();
}

TEST_F(DesktopPermissionSourceTest, withoutADisplayTheScreenCannotBeCaptured) {
    PrivatePulse pulse;
    const auto display = qgetenv("DISPLAY");
    qputenv("DISPLAY", ":4711");
    const auto sentence = content();
    qputenv("DISPLAY", display);
    EXPECT_EQ(sentence, u"The screen can't be captured: no display answers."_s);
}

TEST_F(DesktopPermissionSourceTest, onWaylandThePortalMustBeThere) {
    PrivatePulse pulse;
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    EXPECT_EQ(content(), u"The screen can't be captured: this desktop offers no screenshots to programs."_s);

    auto desktop = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_s);
    StandInPortal portal;
    ASSERT_TRUE(
        desktop.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal, QDBusConnection::ExportAllProperties));
    ASSERT_TRUE(desktop.registerService(u"org.freedesktop.portal.Desktop"_s));
    EXPECT_EQ(content(), QString{});
    QDBusConnection::disconnectFromBus(desktop.name());
}

TEST_F(DesktopPermissionSourceTest, onWaylandWithoutABusTheScreenCannotBeCaptured) {
    PrivatePulse pulse;
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    DesktopPermissionSource alone{worker.executor(), inputs, QDBusConnection{u"nowhere"_s}};
    const auto result = complete(alone.shareableContent());
    ASSERT_FALSE(result);
    EXPECT_FALSE(result.error().errorDescription().isEmpty());
}

TEST(DesktopSessionTest, isWaylandByEitherSign) {
    const auto type = qgetenv("XDG_SESSION_TYPE");
    qunsetenv("WAYLAND_DISPLAY");
    qputenv("XDG_SESSION_TYPE", "x11");
    EXPECT_EQ(desktopSession(), DesktopSession::x11);
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    EXPECT_EQ(desktopSession(), DesktopSession::wayland);
    qunsetenv("WAYLAND_DISPLAY");
    qputenv("XDG_SESSION_TYPE", "wayland");
    EXPECT_EQ(desktopSession(), DesktopSession::wayland);
    if (type.isEmpty())
        qunsetenv("XDG_SESSION_TYPE");
    else
        qputenv("XDG_SESSION_TYPE", type);
}

}  // namespace
}  // namespace corvellan::test

#include "DesktopPermissionSourceTest.moc"
