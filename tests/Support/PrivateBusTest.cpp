#include "PrivateBus.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

TEST(PrivateBusTest, servesProgramsWhoseNameNoAddressCanHold) {
    const QString before = QCoreApplication::applicationName();
    QCoreApplication::setApplicationName(u"Corvellan Bram, 100 % ~ & <Söhne>"_s);
    PrivateBus bus;
    QCoreApplication::setApplicationName(before);
    EXPECT_TRUE(bus.connect().isConnected());
}

}  // namespace

}  // namespace corvellan::test
