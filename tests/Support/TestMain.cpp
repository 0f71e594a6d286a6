#include <gtest/gtest.h>

#include <QCoreApplication>

#include "Base/Executor.h"
#include "TestLoop.h"

int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    corvellan::EventLoopExecutor main;
    corvellan::test::setMainExecutor(main);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
