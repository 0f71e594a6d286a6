// The icon in a tray that takes windows in, with the mouse and the keyboard on a real screen.

#include <xcb/xcb.h>

#include <cstdlib>
#include <QApplication>
#include <QMenu>
#include <QScreen>
#include <QTemporaryDir>

#include "App/MenuBar/StatusIcon.h"
#include "App/MenuBar/TrayStatusBar.h"
#include "MenuBarFixture.h"
#include "Support/ChildProcess.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

xcb_connection_t* display() {
    return qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

/// The window that holds another one; the root of the screen holds what no tray has taken in.
xcb_window_t parentOf(xcb_window_t window, xcb_window_t& root) {
    const std::unique_ptr<xcb_query_tree_reply_t, decltype(&std::free)> tree{
        xcb_query_tree_reply(display(), xcb_query_tree(display(), window), nullptr), &std::free};
    root = tree ? tree->root : xcb_window_t{XCB_WINDOW_NONE};
    return tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
}

/// The icon's window, in the middle of the place that the tray has given it. Absent as long as there is none.
std::optional<QRect> embeddedIcon() {
    for (const QWidget* const widget : QApplication::topLevelWidgets()) {
        if (!widget->inherits("QSystemTrayIconSys") || !widget->isVisible())
            continue;
        const auto window = static_cast<xcb_window_t>(widget->winId());
        xcb_window_t root = XCB_WINDOW_NONE;
        const auto parent = parentOf(window, root);
        if (parent == XCB_WINDOW_NONE || parent == root)
            return {};
        const std::unique_ptr<xcb_translate_coordinates_reply_t, decltype(&std::free)> place{
            xcb_translate_coordinates_reply(display(), xcb_translate_coordinates(display(), window, root, 0, 0),
                                            nullptr),
            &std::free};
        if (place)
            return QRect{QPoint{place->dst_x, place->dst_y}, widget->size()};
    }
    return {};
}

/// The program's colour can be seen within the area.
bool isDrawnIn(QRect area) {
    const auto image =
        QGuiApplication::primaryScreen()->grabWindow(0, area.x(), area.y(), area.width(), area.height()).toImage();
    int pixels = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            pixels += image.pixel(x, y) == statusIconColor().rgb() ? 1 : 0;
    constexpr int plenty = 10;
    return pixels >= plenty;
}

class EmbeddedTrayFixture : public MenuBarFixture {
protected:
    // Two tests that click on one place in quick succession mean no double click.
    EmbeddedTrayFixture() { QApplication::setDoubleClickInterval(0); }

    void startTray() {
        tray.emplace(std::vector<std::string>{"trayer", "--edge", "top", "--align", "right", "--width", "20"},
                     ChildProcess::Environment{}, folder.filePath(u"trayer.log"_s).toStdString());
    }
    void simulate(std::vector<std::string> command) {
        command.insert(command.begin(), "xdotool");
        ChildProcess tool{command, {}, folder.filePath(u"xdotool.log"_s).toStdString()};
        ASSERT_TRUE(tool.finish());
    }
    void click(int button) {
        const auto place = embeddedIcon();
        ASSERT_TRUE(place);
        const QPoint middle = place->center();
        simulate(
            {"mousemove", std::to_string(middle.x()), std::to_string(middle.y()), "click", std::to_string(button)});
    }
    [[nodiscard]] static bool iconIsEmbedded() {
        return spinUntil([] { return embeddedIcon().has_value(); }) &&
               spinUntil([] { return embeddedIcon() && isDrawnIn(*embeddedIcon()); });
    }
    [[nodiscard]] static QMenu* openMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

    QTemporaryDir folder;
    std::optional<ChildProcess> tray;
    TrayStatusBar bar;
};

class EmbeddedTrayTest : public EmbeddedTrayFixture {
protected:
    void SetUp() override {
        startTray();
        ASSERT_TRUE(spinUntil([&] { return bar.isShown(); }));
        build(bar);
        ASSERT_TRUE(iconIsEmbedded());
    }
};

TEST_F(EmbeddedTrayTest, aClickShowsTheWindow) {
    click(1);
    EXPECT_TRUE(spinUntil([&] { return panel.isExposed(); }));
    EXPECT_EQ(desktop.activation.activations.size(), 1U);
    EXPECT_FALSE(openMenu());
}

TEST_F(EmbeddedTrayTest, theContextClickOpensTheMenuWhoseKeysWork) {
    click(3);
    ASSERT_TRUE(spinUntil([] { return openMenu() && openMenu()->windowHandle()->isExposed(); }));
    EXPECT_EQ(openMenu()->actions().size(), 10);

    simulate({"key", "t"});

    EXPECT_TRUE(spinUntil([&] { return openTab() == SidebarTab::train; }));
    EXPECT_TRUE(spinUntil([&] { return panel.isExposed() && !openMenu(); }));
}

TEST_F(EmbeddedTrayTest, aClickOnARowPressesIt) {
    click(3);
    ASSERT_TRUE(spinUntil([] { return openMenu() && openMenu()->windowHandle()->isExposed(); }));
    const auto* const menu = openMenu();
    const auto* const quit = menu->actions().last();
    const QPoint place = menu->mapToGlobal(menu->actionGeometry(const_cast<QAction*>(quit)).center());

    simulate({"mousemove", std::to_string(place.x()), std::to_string(place.y()), "click", "1"});

    EXPECT_TRUE(spinUntil([&] { return terminations == 1; }));
}

TEST_F(EmbeddedTrayTest, aTrayThatRestartsGetsTheIconAgain) {
    tray.reset();
    ASSERT_TRUE(spinUntil([&] { return !bar.isShown() && !embeddedIcon(); }));

    startTray();

    EXPECT_TRUE(iconIsEmbedded());
    EXPECT_TRUE(bar.isShown());
    click(1);
    EXPECT_TRUE(spinUntil([&] { return panel.isExposed(); }));
}

TEST_F(EmbeddedTrayTest, theIconGoesWithTheController) {
    controller.reset();
    EXPECT_TRUE(spinUntil([] { return !embeddedIcon(); }));
}

class LateEmbeddedTrayTest : public EmbeddedTrayFixture {};

TEST_F(LateEmbeddedTrayTest, aTrayThatComesAfterTheProgramGetsTheIcon) {
    build(bar);
    settle();
    EXPECT_FALSE(bar.isShown());

    startTray();

    EXPECT_TRUE(iconIsEmbedded());
    EXPECT_TRUE(bar.isShown());
}

}  // namespace

}  // namespace corvellan::test
