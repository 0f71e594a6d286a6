#pragma once

#include <gtest/gtest.h>

#include <QQuickItem>

#include "App/Handoff/FloatingHandoffWindow.h"
#include "Models/Briefing.h"
#include "Support/FakeDesktop.h"
#include "Support/TestLoop.h"
#include "Views/MarkdownWebView.h"

namespace corvellan::test {

class HandoffFixture : public testing::Test {
protected:
    ~HandoffFixture() override {
        controller.close();
        // What was closed goes at the next turn of a loop, and here none runs.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void show(const QString& note) {
        controller.show({.handoffNote = note});
        ASSERT_TRUE(controller.window());
        ASSERT_TRUE(spinUntil([this] { return controller.window()->isExposed(); }));
    }
    [[nodiscard]] QQuickView& window() const { return *controller.window(); }
    template <typename Item>
    [[nodiscard]] Item* find(const QString& name) const {
        return window().rootObject()->findChild<Item*>(name);
    }
    [[nodiscard]] QString shownText() const { return find<MarkdownWebView>(QStringLiteral("page"))->plainText(); }

    CallLog log;
    FakeWebBrowser browser{log};
    FloatingHandoffWindow controller{browser,
                                     {.url = QStringLiteral("https://crm.example"), .portal = QStringLiteral("42")}};
};

}  // namespace corvellan::test
