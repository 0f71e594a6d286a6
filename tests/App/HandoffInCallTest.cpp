// The handoff in a call, in the program's real windows under a window manager.

#include <QQuickItem>
#include <QTest>

#include "App/Handoff/FloatingHandoffWindow.h"
#include "AppFixture.h"
#include "Base/Executor.h"
#include "Views/MarkdownWebView.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class HandoffInCallTest : public AppFixture {
protected:
    HandoffInCallTest() { MarkdownWebView::convertOn(&worker.executor()); }
    ~HandoffInCallTest() override {
        takeDown();
        handoff.close();
        // What was closed goes at the next turn of a loop, and here none runs.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        MarkdownWebView::convertOn(nullptr);
    }

    void SetUp() override {
        ASSERT_EQ(QGuiApplication::platformName(), u"xcb"_s) << "run me through tests/Support/with-display";
        launch();
        session().startSession({.company = u"Nordwind"_s});
        settle();
        goLive();
        session().setSessionMode(u"coach"_s);
        session().setCachedHandoff(HandoffResponse{.handoffNote = note});
        ASSERT_TRUE(spinUntil([this] {
            return panel().isExposed() && panel().isActive() && panel().isSettled() &&
                   panel().size() == QSize(500, 400) && panel().rootObject()->width() == 500 && find(u"companyRow"_s);
        }));
        // Everything stands where the next frame shows it.
        int frames = 0;
        ASSERT_TRUE(panel().afterNextFrame([&frames] { ++frames; }));
        ASSERT_TRUE(spinUntil([&frames] { return frames == 1; }));
    }
    HandoffWindowController& handoffWindowController() override { return handoff; }

    [[nodiscard]] QQuickItem* find(const QString& name) {
        auto* const item = panel().rootObject()->findChild<QQuickItem*>(name);
        return item && item->isVisible() ? item : nullptr;
    }
    void press(QQuickItem* item) {
        ASSERT_TRUE(item);
        QTest::mouseClick(&panel(), Qt::LeftButton, {},
                          item->mapToScene({item->width() / 2, item->height() / 2}).toPoint());
    }
    [[nodiscard]] bool showsSoon(const QString& text) {
        return spinUntil([&] {
            if (!handoff.window() || !handoff.window()->isExposed())
                return false;
            return handoff.window()->rootObject()->findChild<MarkdownWebView*>(u"page"_s)->plainText().contains(text);
        });
    }

    const QString note = u"## Nordwind & Co\n\n- ask **Jo**, jo@nordwind.example"_s;
    WorkerThread worker{"test-worker"};
    FloatingHandoffWindow handoff{desktop.browser, {.url = u"https://crm.example"_s, .portal = u"42"_s}};
};

}  // namespace

TEST_F(HandoffInCallTest, theCompanyRowOpensTheNoteAboveThePanel) {
    press(find(u"companyRow"_s));
    ASSERT_TRUE(showsSoon(u"Nordwind & Co"_s));
    EXPECT_TRUE(spinUntil([this] { return handoff.window()->isActive(); }));
    EXPECT_TRUE(panel().isVisible());
    EXPECT_TRUE(session().isSessionActive());
}

TEST_F(HandoffInCallTest, theNoteStaysWhenTheCallEnds) {
    press(find(u"companyRow"_s));
    ASSERT_TRUE(showsSoon(u"Nordwind & Co"_s));
    session().endSession();
    settleAfter(clock, 5s);
    EXPECT_FALSE(session().isSessionActive());
    EXPECT_TRUE(handoff.window()->isVisible());
}

TEST_F(HandoffInCallTest, closingTheNoteLeavesTheCallAlone) {
    press(find(u"companyRow"_s));
    ASSERT_TRUE(showsSoon(u"Nordwind & Co"_s));
    ASSERT_TRUE(spinUntil([this] { return handoff.window()->isActive(); }));
    QTest::keyClick(handoff.window(), Qt::Key_Escape);
    EXPECT_FALSE(handoff.window());
    EXPECT_TRUE(session().isSessionActive());
    EXPECT_TRUE(panel().isVisible());
}

TEST_F(HandoffInCallTest, aHostileNoteLeavesTheCallItsMainThread) {
    session().setCachedHandoff(HandoffResponse{.handoffNote = u"## Head\n"_s + QString(40'000, u'a')});
    press(find(u"companyRow"_s));
    // The window is up before its note is converted.
    EXPECT_TRUE(handoff.window());
    EXPECT_TRUE(showsSoon(u"Head"_s));
}

}  // namespace corvellan::test
