#include <QApplication>

#include "Support/GuiTestMain.h"

int main(int argc, char** argv) {
    // What trays call the item, as in the program.
    QCoreApplication::setApplicationName(QStringLiteral("Corvellan"));
    return corvellan::test::runGuiTests<QApplication>(argc, argv);
}
