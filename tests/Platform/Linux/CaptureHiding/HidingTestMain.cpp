#include <gtest/gtest.h>

#include <QGuiApplication>

#include "Base/Executor.h"
#include "Support/TestLoop.h"

// Windows need a QGuiApplication; none of the screens is needed.
int main(int argc, char** argv) {
    QGuiApplication application{argc, argv};
    QGuiApplication::setQuitOnLastWindowClosed(false);
    corvellan::EventLoopExecutor main;
    corvellan::test::setMainExecutor(main);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
