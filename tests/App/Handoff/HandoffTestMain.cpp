#include "Support/GuiTestMain.h"

int main(int argc, char** argv) {
    return corvellan::test::runGuiTests(argc, argv);
}
