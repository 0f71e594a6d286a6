// Renders every state of the window's two faces into PNG files: corvellan-screenshots FOLDER [PART OF A NAME]

#include <cstdio>
#include <QCursor>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QTemporaryDir>

#include "App/Handoff/FloatingHandoffWindow.h"
#include "FakeHandoffWindow.h"
#include "Models/MemoryStore.h"
#include "ScreenshotStates.h"
#include "Views/QuickSetup.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

void spin(std::chrono::milliseconds time) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < time.count())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 10);
}

/// The window's picture on a plain desktop, so that its rounded corners and its translucency show. Every pixel of a
/// dense screen is one of the picture's.
QImage onDesktop(QImage window) {
    window.setDevicePixelRatio(1);
    constexpr int margin = 24;
    QImage picture{window.size() + QSize{2 * margin, 2 * margin}, QImage::Format_RGB32};
    QPainter painter{&picture};
    QLinearGradient ground{QPointF{0, 0}, QPointF(picture.width(), picture.height())};
    ground.setColorAt(0, QColor{0x6d, 0x7d, 0x93});
    ground.setColorAt(1, QColor{0x3b, 0x46, 0x57});
    painter.fillRect(picture.rect(), ground);
    painter.drawImage(margin, margin, window);
    return picture;
}

/// In the home that `main` has made.
bool writeNote(const QString& text) {
    QDir{}.mkpath(QFileInfo{MemoryStore::filePath()}.path());
    QFile file{MemoryStore::filePath()};
    const QByteArray bytes = text.toUtf8();
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

bool save(const QImage& picture, const ScreenshotState& state, const QDir& folder) {
    const QString path = folder.filePath(state.name + u".png"_s);
    std::printf("%s %dx%d\n", qPrintable(path), picture.width(), picture.height());
    return !picture.isNull() && onDesktop(picture).save(path);
}

bool takeHandoff(const ScreenshotState& state, const QDir& folder) {
    FakeDesktop desktop;
    FloatingHandoffWindow handoffWindow{desktop.browser, {.url = u"https://crm.example"_s, .portal = u"42"_s}};
    handoffWindow.show(*state.handoff);
    QQuickView* const window = handoffWindow.window();
    if (!window || !spinUntil([&] { return window->isExposed(); }))
        return false;
    if (state.size)
        window->resize(*state.size);
    // Longer than a note takes to be laid out.
    spin(600ms);
    return save(window->grabWindow(), state, folder);
}

bool take(const ScreenshotState& state, const QDir& folder) {
    if (state.handoff)
        return takeHandoff(state, folder);
    FakeStore store;
    SessionFixture fixture;
    fixture.preferences.setNumber(u"fontScale"_s, state.fontScale);
    fixture.preferences.setBoolean(u"onboardingCompleted"_s, !state.onboardingStep);
    fixture.auth->accessToken = u"token"_s;
    fixture.http.answer(200, "[]");
    SessionViewModel& session = fixture.session();
    session.setServerURL(u"wss://coach.corvellan.example/ws"_s);
    NoCaptureHiding captureHiding;
    FakeHandoffWindow handoffWindow;
    SettingsFixture settings{fixture.preferences};
    settings.desktop.appearance.setColorScheme(state.isLight ? ColorScheme::light : ColorScheme::dark);
    const SpeechVoice voice{.language = u"en-US"_s, .quality = VoiceQuality::enhanced, .name = u"us1"_s};
    settings.desktop.speech.voices = {.all = {voice}, .americanEnglish = voice, .engine = u"Speech Dispatcher"_s};
    if (state.prepareSettings)
        state.prepareSettings(settings, fixture.preferences);
    StealthPanel panel{{session, fixture.preferences, captureHiding, handoffWindow, settings.parts()},
                       settings.desktop.appearance};
    session.onSessionActiveChanged = [&](bool isActive) { isActive ? panel.enterCallMode() : panel.enterIdleMode(); };
    session.onStealthChanged = [&](bool isEnabled) { panel.setStealth(isEnabled); };
    session.onSessionModeChanged = [&](const QString& mode) { panel.setSessionMode(mode); };
    // Away from what would show that it is under the pointer.
    QCursor::setPos(0, 0);
    panel.makeKeyAndOrderFront();
    if (!spinUntil([&] { return panel.isExposed(); }))
        return false;
    if (state.isCall) {
        // On this server nobody has to sign in, and the session then waits for the server's answer.
        session.setServerURL(u"ws://127.0.0.1:3001/ws"_s);
        session.startSession({.company = state.company});
        settle();
    }
    if (state.layout)
        session.setSessionMode(*state.layout);
    for (int i = 0; i < state.layoutPresses; ++i)
        panel.views().live()->cycleSessionTab();
    state.prepare(session);
    if (state.unfoldsBrief)
        panel.views().overlay()->pressCompanyRow();
    if (state.note && !writeNote(*state.note))
        return false;
    if (state.tab)
        session.setRequestedTab(*state.tab);
    if (state.arrange)
        state.arrange({.fixture = fixture, .store = store, .settings = settings, .panel = panel});
    for (int step = 0; step < state.onboardingStep.value_or(0); ++step)
        panel.views().onboarding()->next();
    if (state.size)
        panel.resize(*state.size);
    // A press at the instant of a release would be a key that is held.
    auto press = [&panel, instant = quint64{0}](Qt::Key key, int times) mutable {
        for (int i = 0; i < times; ++i)
            for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
                QKeyEvent event{type, key, Qt::NoModifier};
                event.setTimestamp(++instant);
                QCoreApplication::sendEvent(&panel, &event);
            }
    };
    press(Qt::Key_Tab, state.tabs);
    // The form takes its new size first.
    spin(100ms);
    press(Qt::Key_PageDown, state.pages);
    press(Qt::Key_Space, state.pressesSpace ? 1 : 0);
    settleAfter(fixture.clock, state.openFor);
    // Longer than every animation.
    spin(600ms);
    const QImage picture = panel.grabWindow();
    session.onSessionActiveChanged = {};
    session.onStealthChanged = {};
    session.onSessionModeChanged = {};
    return save(picture, state, folder);
}

int takeAll(const QStringList& arguments) {
    if (arguments.size() < 2 || !QDir{}.mkpath(arguments[1])) {
        std::fprintf(stderr, "Usage: corvellan-screenshots FOLDER [PART OF A NAME]\n");
        return 2;
    }
    for (const ScreenshotState& state : screenshotStates())
        if (state.name.contains(arguments.value(2)) && !take(state, QDir{arguments[1]})) {
            std::fprintf(stderr, "%s: no picture\n", qPrintable(state.name));
            return 1;
        }
    return 0;
}

}  // namespace

}  // namespace corvellan::test

int main(int argc, char** argv) {
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    // Dates are written as the desktop has them: here always alike.
    qputenv("LC_ALL", "en_GB.UTF-8");
    qputenv("TZ", "Europe/Berlin");
    QGuiApplication application{argc, argv};
    QGuiApplication::setQuitOnLastWindowClosed(false);
    corvellan::EventLoopExecutor main;
    corvellan::test::setMainExecutor(main);
    corvellan::prepareQuick();
    return corvellan::test::takeAll(QCoreApplication::arguments());
}
