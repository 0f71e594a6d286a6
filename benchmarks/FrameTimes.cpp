// How long the window takes from an input to the frame that answers it, with 100,000 records and a transcript of
// 10,000 lines; beside it an empty window of the same size that draws itself anew. Needs a display. Prints JSON: a
// list of steps, each with its samples in milliseconds.
//
// A sample is the longest time in which the main thread could draw nothing: from the input to the end of the first
// frame, or a later stretch of work that the input brought about.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <string>
#include <vector>

#include "App/Panel/StealthPanel.h"
#include "Support/SessionFixture.h"
#include "Support/SettingsFixture.h"
#include "Views/FakeHandoffWindow.h"
#include "Views/QuickSetup.h"
#include "Views/ViewStates.h"

namespace corvellan::test {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

using Steady = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int records = 100'000;
constexpr int lines = 10'000;
constexpr int rounds = 100;
/// What an input brings about later has come by then, and the screen that was left is ready anew.
constexpr auto quietTime = 60ms;

/// Remembers the longest stretch of work between two waits of the main loop.
class Watch {
public:
    Watch() {
        auto* const dispatcher = QAbstractEventDispatcher::instance();
        QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, &m_context, [this] { m_since = Steady::now(); });
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, &m_context,
                         [this] { m_longest = std::max(m_longest, Milliseconds{Steady::now() - m_since}); });
    }

    void restart() {
        m_since = Steady::now();
        m_longest = {};
    }
    [[nodiscard]] Milliseconds longest() const { return m_longest; }

private:
    QObject m_context;
    Steady::time_point m_since = Steady::now();
    Milliseconds m_longest{};
};

class Bench {
public:
    /// Does `input` again and again, and prints how long the window took each time.
    void measure(QQuickWindow& window, const char* step, const std::function<void(int)>& input) {
        std::string samples;
        for (int round = 0; round < rounds; ++round) {
            const Milliseconds sample = once(window, [&] { input(round); });
            samples += (round > 0 ? ", " : "") + std::to_string(sample.count());
        }
        std::printf("%s{\"step\": \"%s\", \"ms\": [%s]}", m_isFirst ? "[" : ",\n", step, samples.c_str());
        m_isFirst = false;
    }
    static void end() { std::printf("]\n"); }

private:
    Milliseconds once(QQuickWindow& window, const std::function<void()>& input) {
        bool hasCome = false;
        const auto swapped = QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [&] { hasCome = true; });
        const auto start = Steady::now();
        input();
        // A frame comes even where the input changed nothing.
        window.update();
        while (!hasCome)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        const Milliseconds first = Steady::now() - start;
        QObject::disconnect(swapped);
        m_watch.restart();
        // A screen that was left goes now; by themselves these events wait for the loop of `exec`.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        while (Steady::now() - start < first + quietTime)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
        return std::max(first, m_watch.longest());
    }

    Watch m_watch;
    bool m_isFirst = true;
};

void press(QWindow& window, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {}) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event{type, key, modifiers, text};
        QCoreApplication::sendEvent(&window, &event);
    }
}

void type(QWindow& window, int round) {
    const int letter = round % 26;
    press(window, Qt::Key_A + letter, Qt::NoModifier, QString{QChar{u'a' + letter}});
}

std::vector<SessionRecord> manyRecords(const Clock& clock) {
    std::vector<SessionRecord> made;
    made.reserve(records);
    QStringList transcript;
    for (int line = 0; line < lines; ++line)
        transcript << (line % 2 == 0 ? u"[Mic] "_s : u"[Audio] "_s) +
                          u"Line %1 of a call that went on for a whole day, about as long as people speak."_s.arg(line);
    for (int i = 0; i < records; ++i)
        made.push_back(SessionRecord::make({.durationSecs = 60 + i % 3000,
                                            .turns = i % 90,
                                            .meddic = {.metrics = i % 2 == 0, .champion = i % 3 == 0},
                                            .transcript = i == 0 ? transcript : QStringList{},
                                            .wasTrainMode = i % 5 == 0,
                                            .companyName = u"Company %1"_s.arg(i % 300)},
                                           clock.wallNow() - i * 5min));
    return made;
}

void measureTabs(Bench& bench, StealthPanel& panel) {
    auto& dashboard = *panel.views().dashboard();
    for (const auto& [step, tab] : {std::pair{"Switch to the home screen", u"home"_s},
                                    {"Switch to the calendar", u"calendar"_s},
                                    {"Switch to the history", u"history"_s},
                                    {"Switch to the memory note", u"memory"_s},
                                    {"Switch to the settings", u"settings"_s}}) {
        const QString other = tab == u"home" ? u"history"_s : u"home"_s;
        bench.measure(panel, step, [&](int round) { dashboard.selectTab(round % 2 == 0 ? tab : other); });
        dashboard.selectTab(u"home"_s);
        settle();
    }
}

void measureTyping(Bench& bench, StealthPanel& panel, SessionFixture& fixture) {
    panel.views().dashboard()->selectTab(u"home"_s);
    settle();
    bench.measure(panel, "Type in the search", [&](int round) { type(panel, round); });
    panel.views().home()->clearSearch();
    auto* const notes = panel.rootObject()->findChild<QQuickItem*>(u"callPrepNotes"_s);
    notes->forceActiveFocus();
    bench.measure(panel, "Type in the call's notes", [&](int round) { type(panel, round); });
    settleAfter(fixture.clock, 1s);
}

void measureHistory(Bench& bench, StealthPanel& panel) {
    panel.views().dashboard()->selectTab(u"history"_s);
    settle();
    auto& history = *panel.views().history();
    bench.measure(panel, "Filter the history", [&](int round) { history.setFilterModeIndex(round % 3); });
    bench.measure(panel, "Period of the history", [&](int round) { history.setTimeRangeIndex(round % 4); });
    history.setFilterModeIndex(2);
    history.setTimeRangeIndex(3);
    settle();
    auto* const list = panel.rootObject()->findChild<QQuickItem*>(u"sessions"_s);
    list->forceActiveFocus();
    bench.measure(panel, "A page down the history", [&](int) { press(panel, Qt::Key_PageDown); });
    bench.measure(panel, "To the end of the history and back",
                  [&](int round) { press(panel, round % 2 == 0 ? Qt::Key_End : Qt::Key_Home); });
    bench.measure(panel, "Open and close a summary", [&](int round) {
        if (round % 2 == 0)
            history.open(0);
        else if (history.detail())
            history.detail()->back();
        settle();
    });
    history.open(0);
    settle();
    bench.measure(panel, "A page down the summary's transcript", [&](int) { press(panel, Qt::Key_PageDown); });
}

void measureCall(Bench& bench, StealthPanel& panel, SessionFixture& fixture) {
    fixture.goLive();
    auto& session = fixture.session();
    session.setSessionMode(u"full"_s);
    for (int line = 0; line < lines; ++line)
        session.transcriptLines().append({.source = line % 2 == 0 ? TranscriptSource::mic : TranscriptSource::system,
                                          .text = u"Line %1, about as long as people speak in a call."_s.arg(line)});
    settle();
    bench.measure(panel, "A line more in the transcript", [&](int round) {
        session.transcriptLines().append({.source = TranscriptSource::mic, .text = u"One more: %1."_s.arg(round)});
    });
    bench.measure(panel, "Words that stream in", [&](int round) {
        session.setCounterpartStreamingText(u"And that is before the fines "_s.repeated(1 + round % 5));
    });
    bench.measure(panel, "A new tip", [&](int round) {
        session.setCoachingMessage(u"Ask who signs off on the budget, for the %1th time"_s.arg(round));
    });
    auto* const transcript = panel.rootObject()->findChild<QQuickItem*>(u"transcript"_s);
    transcript->forceActiveFocus();
    bench.measure(panel, "A page up the call's transcript", [&](int) { press(panel, Qt::Key_PageUp); });
    bench.measure(panel, "Levels of both sides", [&](int round) {
        session.setAudioLevel(static_cast<float>(round % 10) / 10);
        session.setSystemAudioLevel(static_cast<float>(round % 7) / 7);
    });
    bench.measure(panel, "Change the layout", [&](int) { panel.views().live()->cycleSessionTab(); });
}

/// What any window of this size and renderer costs that is drawn anew.
void measurePeer(Bench& bench, QSize size) {
    QQuickWindow window;
    window.resize(size);
    window.show();
    spinUntil([&] { return window.isExposed(); });
    bench.measure(window, "peer", [&](int round) { window.setColor(round % 2 == 0 ? Qt::black : Qt::darkGray); });
}

void measureAll() {
    FakeStore store;
    SessionFixture fixture;
    fixture.preferences.setBoolean(u"onboardingCompleted"_s, true);
    fixture.auth->accessToken = u"token"_s;
    fixture.http.answer(200, "[]");
    store.records = manyRecords(fixture.clock);
    SessionViewModel& session = fixture.session();
    session.setModelContext(&store);
    NoCaptureHiding captureHiding;
    FakeHandoffWindow handoffWindow;
    SettingsFixture settings{fixture.preferences};
    StealthPanel panel{{session, fixture.preferences, captureHiding, handoffWindow, settings.parts()},
                       settings.desktop.appearance};
    session.onSessionActiveChanged = [&](bool isActive) { isActive ? panel.enterCallMode() : panel.enterIdleMode(); };
    session.onSessionModeChanged = [&](const QString& mode) { panel.setSessionMode(mode); };
    panel.makeKeyAndOrderFront();
    spinUntil([&] { return panel.isExposed(); });
    settle();

    Bench bench;
    measurePeer(bench, panel.size());
    measureTabs(bench, panel);
    measureTyping(bench, panel, fixture);
    measureHistory(bench, panel);
    measureCall(bench, panel, fixture);
    Bench::end();
    session.onSessionActiveChanged = {};
    session.onSessionModeChanged = {};
}

}  // namespace

}  // namespace corvellan::test

int main(int argc, char** argv) {
    QGuiApplication application{argc, argv};
    QGuiApplication::setQuitOnLastWindowClosed(false);
    corvellan::EventLoopExecutor main;
    corvellan::test::setMainExecutor(main);
    corvellan::prepareQuick();
    corvellan::test::measureAll();
    return 0;
}
