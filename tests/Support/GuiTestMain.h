#pragma once

#include <gtest/gtest.h>

#include <QGuiApplication>

#include "Base/Executor.h"
#include "TestLoop.h"
#include "Views/QuickSetup.h"

namespace corvellan::test {

/// The `main` of a test program that needs fonts and windows; with menus and the like, a QApplication.
template <typename Application = QGuiApplication>
int runGuiTests(int argc, char** argv) {
    Application application{argc, argv};
    application.setQuitOnLastWindowClosed(false);
    EventLoopExecutor main;
    setMainExecutor(main);
    prepareQuick();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

}  // namespace corvellan::test
