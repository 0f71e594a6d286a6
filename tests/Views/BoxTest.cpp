#include "Views/Box.h"

#include <gtest/gtest.h>
#include <cmath>
#include <QGuiApplication>
#include <QImage>
#include <QQuickWindow>
#include <QScreen>
#include <vector>

#include "Support/TestLoop.h"
#include "Views/QuickSetup.h"

namespace corvellan::test {

namespace {

constexpr QRgb white = 0xffffffff;
constexpr QRgb black = 0xff000000;

/// A black window with boxes in it, on a screen of the ratio that this process was started for.
class BoxScene {
public:
    BoxScene() {
        m_window.setColor(Qt::black);
        m_window.resize(200, 120);
        m_window.show();
        EXPECT_TRUE(spinUntil([this] { return m_window.isExposed(); }));
    }

    Box& add(const QRectF& place, const QColor& color, qreal radius = 0, QQuickItem* parent = nullptr) {
        auto* const box = new Box{parent ? parent : m_window.contentItem()};
        box->setPosition(place.topLeft());
        box->setSize(place.size());
        box->setColor(color);
        box->setRadius(radius);
        return *box;
    }
    /// Shows no more of what is put in it than lies in `place`. Its child scrolls.
    QQuickItem& addWindow(const QRectF& place) {
        auto* const window = new QQuickItem{m_window.contentItem()};
        window->setPosition(place.topLeft());
        window->setSize(place.size());
        window->setClip(true);
        return *new QQuickItem{window};
    }
    [[nodiscard]] QImage picture() {
        QImage picture = m_window.grabWindow().convertToFormat(QImage::Format_RGB32);
        picture.setDevicePixelRatio(1);
        return picture;
    }
    /// What has come to the screen by one repaint after another; on a dense screen its upper left part.
    [[nodiscard]] QImage screenPicture() {
        QImage picture =
            m_window.screen()->grabWindow(m_window.winId()).toImage().convertToFormat(QImage::Format_RGB32);
        picture.setDevicePixelRatio(1);
        return picture;
    }
    void awaitFrame() {
        int frames = 0;
        const auto counting = QObject::connect(&m_window, &QQuickWindow::frameSwapped, [&frames] { ++frames; });
        m_window.update();
        EXPECT_TRUE(spinUntil([&frames] { return frames > 0; }));
        QObject::disconnect(counting);
    }
    [[nodiscard]] qreal ratio() const { return m_window.effectiveDevicePixelRatio(); }

private:
    QQuickWindow m_window;
};

/// The rows of `picture` in column `x` that are not black, as runs of neighbours.
std::vector<std::vector<QRgb>> runsInColumn(const QImage& picture, int x) {
    std::vector<std::vector<QRgb>> runs;
    bool isInRun = false;
    for (int y = 0; y < picture.height(); ++y) {
        const QRgb pixel = picture.pixel(x, y);
        if (pixel != black && !isInRun)
            runs.emplace_back();
        isInRun = pixel != black;
        if (isInRun)
            runs.back().push_back(pixel);
    }
    return runs;
}

QImage cut(const QImage& picture, const QRectF& place) {
    return picture.copy(place.toRect());
}

}  // namespace

TEST(BoxTest, linesAreEquallyThickWhereverTheyLie) {
    BoxScene scene;
    for (int i = 0; i < 12; ++i)
        scene.add({10, 3.0 + 9 * i + 0.3 * i, 100, 1}, Qt::white);

    const auto runs = runsInColumn(scene.picture(), static_cast<int>(50 * scene.ratio()));

    ASSERT_EQ(runs.size(), 12U);
    const std::vector<QRgb> whole(static_cast<std::size_t>(std::round(scene.ratio())), white);
    for (const auto& run : runs)
        EXPECT_EQ(run, whole);
}

TEST(BoxTest, cellsOfOneSizeLookAlikeAndHaveNoSeams) {
    BoxScene scene;
    std::vector<QRectF> places;
    for (int i = 0; i < 6; ++i) {
        const QRectF place{5.0 + 28 * i, 7.0 + 13 * i, 25, 16};
        scene.add(place, QColor{255, 255, 255, 40}, 3);
        places.push_back(onDevicePixels(place, scene.ratio()));
    }

    const QImage picture = scene.picture();

    const QImage first = cut(picture, places.front());
    EXPECT_EQ(first, first.mirrored(true, false));
    EXPECT_EQ(first, first.mirrored(false, true));
    for (const QRectF& place : places)
        EXPECT_EQ(cut(picture, place), first);
    // Nothing is painted twice: in a translucent box that would show.
    const QRgb filling = first.pixel(first.rect().center());
    for (int y = 0; y < first.height(); ++y)
        for (int x = 0; x < first.width(); ++x)
            EXPECT_LE(qGreen(first.pixel(x, y)), qGreen(filling)) << x << ' ' << y;
}

TEST(BoxTest, aBordersFourSidesAreEquallyThick) {
    BoxScene scene;
    Box& box = scene.add({10.4, 9.7, 91, 45}, Qt::transparent, 8);
    box.setBorderColor(Qt::white);

    const QImage picture = scene.picture();

    const auto down = runsInColumn(picture, static_cast<int>(55 * scene.ratio()));
    const auto across = runsInColumn(picture.transformed(QTransform{}.rotate(90)),
                                     picture.height() - static_cast<int>(32 * scene.ratio()));
    const std::vector<QRgb> whole(static_cast<std::size_t>(std::round(scene.ratio())), white);
    EXPECT_EQ(down, (std::vector{whole, whole}));
    EXPECT_EQ(across, (std::vector{whole, whole}));
}

TEST(BoxTest, aRepaintOfAPartLooksLikeOneOfTheWhole) {
    BoxScene scene;
    scene.add({3, 3, 150, 90}, QColor{255, 255, 255, 60}, 10);
    scene.add({20, 20, 60, 30}, QColor{0, 255, 0, 80}, 5);
    Box& changing = scene.add({31, 27, 13, 7}, Qt::red, 3);
    scene.awaitFrame();

    for (const QColor& color : {QColor{0, 0, 255, 90}, QColor{255, 255, 0, 30}, QColor{Qt::transparent}}) {
        changing.setColor(color);
        scene.awaitFrame();
        const QImage partly = scene.screenPicture();
        EXPECT_EQ(partly, scene.picture().copy(partly.rect()));
    }
}

TEST(BoxTest, nothingIsPaintedOutsideWhatAWindowShowsHoweverItIsScrolled) {
    BoxScene scene;
    const QRectF place{0, 40, 200, 40};
    QQuickItem& scrolled = scene.addWindow(place);
    // Above the window, across its edges, in it and below.
    for (int i = 0; i < 8; ++i)
        scene.add({10, -38.0 + 15 * i, 100, 12}, Qt::white, 3, &scrolled);
    const auto isOutside = [&](int y) {
        const qreal line = (y + 0.5) / scene.ratio();
        return line < place.top() - 1 || line > place.bottom() + 1;
    };
    for (const qreal way : {0.0, -7.0, 11.0, 15.0, -30.0}) {
        scrolled.setY(way);
        scene.awaitFrame();
        for (const QImage& picture : {scene.screenPicture(), scene.picture()}) {
            int inside = 0;
            for (int y = 0; y < picture.height(); ++y) {
                const bool isPainted = picture.pixel(static_cast<int>(50 * scene.ratio()), y) != black;
                EXPECT_FALSE(isPainted && isOutside(y)) << y << " at " << way;
                inside += isPainted ? 1 : 0;
            }
            EXPECT_GT(inside, 0) << "what is to be seen is";
        }
    }
}

TEST(BoxTest, sidesLieOnDevicePixels) {
    EXPECT_EQ(onDevicePixels({10, 10, 100, 1}, 1), (QRectF{10, 10, 100, 1}));
    EXPECT_EQ(onDevicePixels({10, 11, 100, 1}, 1.25), (QRectF{13, 14, 125, 1}));
    EXPECT_EQ(onDevicePixels({0, 0.2, 100, 1}, 1), (QRectF{0, 0, 100, 1}));
    EXPECT_EQ(onDevicePixels({0, 0, 0.2, 0}, 1), (QRectF{0, 0, 1, 0})) << "what is there stays in view";
}

TEST(BoxTest, longSidesMeetTheirNeighbours) {
    for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0})
        for (qreal end = 29; end < 90; end += 0.7) {
            const QRectF upper = onDevicePixels({0, 0, 50, end}, ratio);
            const QRectF lower = onDevicePixels({0, end, 50, 200}, ratio);
            EXPECT_EQ(upper.bottom(), lower.top()) << ratio << ' ' << end;
        }
}

}  // namespace corvellan::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QGuiApplication application{argc, argv};
    corvellan::prepareQuick();
    return RUN_ALL_TESTS();
}
