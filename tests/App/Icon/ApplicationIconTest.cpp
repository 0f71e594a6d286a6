#include "App/Icon/ApplicationIcon.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <QGuiApplication>
#include <QImage>

#include "Base/Executor.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

TEST(ApplicationIconTest, isThereInEverySize) {
    const QIcon icon = applicationIcon();
    QList<int> widths;
    for (const QSize size : icon.availableSizes()) {
        EXPECT_EQ(size.width(), size.height());
        widths.append(size.width());
    }
    std::ranges::sort(widths);
    EXPECT_EQ(widths, (QList<int>{16, 24, 32, 48, 64, 128, 256}));
}

TEST(ApplicationIconTest, isABubbleWithAGoldenBarOnNothing) {
    for (const QSize size : applicationIcon().availableSizes()) {
        const QImage image = applicationIcon().pixmap(size).toImage();
        ASSERT_EQ(image.size(), size);
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << size.width();
        EXPECT_EQ(image.pixelColor(size.width() - 1, size.height() - 1).alpha(), 0) << size.width();
        const QColor bar = image.pixelColor(size.width() / 2, size.height() * 2 / 5);
        EXPECT_TRUE(bar.red() > 230 && bar.green() > 190 && bar.blue() < 110) << size.width();
        const QColor bubble = image.pixelColor(size.width() / 8, size.height() * 2 / 5);
        EXPECT_TRUE(bubble.alpha() == 255 && bubble.blue() > 150 && bubble.red() < 100) << size.width();
    }
}

}  // namespace corvellan::test

int main(int argc, char** argv) {
    const QGuiApplication application{argc, argv};
    corvellan::EventLoopExecutor executor;
    corvellan::test::setMainExecutor(executor);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
