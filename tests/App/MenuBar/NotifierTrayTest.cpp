// The icon and its menu as a panel sees them that shows status notifiers.

#include "App/MenuBar/TrayStatusBar.h"

#include <QTemporaryDir>

#include "DBusMenuClient.h"
#include "MenuBarFixture.h"
#include "Support/ChildProcess.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class HostProcess {
public:
    explicit HostProcess(const std::vector<std::string>& arguments = {}) { start(arguments); }

    void start(const std::vector<std::string>& arguments = {}) {
        std::vector<std::string> command{NOTIFIER_HOST};
        command.insert(command.end(), arguments.begin(), arguments.end());
        m_process.emplace(command, ChildProcess::Environment{{"QT_QPA_PLATFORM", "offscreen"}},
                          folder.filePath(u"host.log"_s).toStdString());
    }
    void stop() { m_process.reset(); }

    QTemporaryDir folder;

private:
    std::optional<ChildProcess> m_process;
};

bool hasWatcher() {
    try {
        auto message = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus"_s,
                                                      u"NameHasOwner"_s);
        message.setArguments({u"org.kde.StatusNotifierWatcher"_s});
        return DBusMenuClient::call(message).arguments().constFirst().toBool();
    } catch (const std::runtime_error&) {
        return false;
    }
}

void tellWatcher(const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(u"org.kde.StatusNotifierWatcher"_s, u"/StatusNotifierWatcher"_s,
                                                  u"org.kde.StatusNotifierWatcher"_s, method);
    message.setArguments(arguments);
    DBusMenuClient::call(message);
}

bool itemComes() {
    return spinUntil([] { return DBusMenuClient::registeredItems().size() == 1; });
}

class NotifierTrayTest : public MenuBarFixture {
protected:
    void SetUp() override {
        ASSERT_TRUE(spinUntil(hasWatcher));
        build(bar);
        ASSERT_TRUE(itemComes());
        item.emplace(DBusMenuClient::registeredItems().constFirst());
    }

    HostProcess host;
    TrayStatusBar bar;
    std::optional<DBusMenuClient> item;
};

TEST_F(NotifierTrayTest, theItemSaysWhoItIs) {
    const auto properties = item->properties();
    EXPECT_EQ(properties.value(u"Title"_s).toString(), u"Corvellan"_s);
    EXPECT_EQ(item->toolTipTitle(), u"Corvellan"_s);
    EXPECT_EQ(properties.value(u"Id"_s).toString(), u"Corvellan"_s);
    EXPECT_EQ(properties.value(u"Status"_s).toString(), u"Active"_s);
    EXPECT_EQ(properties.value(u"Category"_s).toString(), u"ApplicationStatus"_s);
    EXPECT_FALSE(properties.value(u"ItemIsMenu"_s).toBool());
    EXPECT_TRUE(bar.isShown());
}

TEST_F(NotifierTrayTest, theIconComesInTheSizesOfPanels) {
    const auto widths = item->iconWidths();
    for (const int width : {16, 22, 24, 32})
        EXPECT_NE(std::ranges::find(widths, width), widths.end()) << width;
}

TEST_F(NotifierTrayTest, theMenuHasItsTitlesOrderSeparatorsAndKeys) {
    const std::vector<std::pair<QString, QStringList>> expected{
        {u"Show Main Window"_s, {u"O"_s}},
        {{}, {}},
        {u"Start Session"_s, {u"S"_s}},
        {u"Start Training"_s, {u"T"_s}},
        {u"End Session"_s, {u"E"_s}},
        {u"Toggle Stealth"_s, {}},
        {{}, {}},
        {u"Check for Updates..."_s, {}},
        {{}, {}},
        {u"Quit Corvellan"_s, {u"Q"_s}},
    };
    std::vector<std::pair<QString, QStringList>> shown;
    for (const auto& row : item->layout()) {
        EXPECT_EQ(row.type, row.label.isEmpty() ? u"separator"_s : u"standard"_s);
        EXPECT_TRUE(row.isEnabled && row.isVisible && !row.isToggle) << row.label.toStdString();
        shown.emplace_back(withoutMnemonic(row.label), row.shortcut);
    }
    EXPECT_EQ(shown, expected);
    EXPECT_EQ(item->layout().at(0).label, u"Sh_ow Main Window"_s) << "the key presses its row in the open menu";
}

TEST_F(NotifierTrayTest, theMenuIsTheSameInACall) {
    const auto rows = item->layout();
    fixture.goLive();
    const auto inCall = item->layout();
    ASSERT_EQ(inCall.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(inCall[i].label, rows[i].label);
        EXPECT_EQ(inCall[i].isEnabled, rows[i].isEnabled);
    }
}

TEST_F(NotifierTrayTest, everyRowDoesItsWork) {
    fixture.session().setSparkleUpdater(&updater);

    item->press(u"Show Main Window"_s);
    EXPECT_TRUE(spinUntil([&] { return panel.isExposed(); }));

    panel.close();
    item->press(u"Start Training"_s);
    EXPECT_TRUE(spinUntil([&] { return openTab() == SidebarTab::train; }));
    EXPECT_TRUE(panel.isVisible());

    item->press(u"Start Session"_s);
    EXPECT_TRUE(spinUntil([&] { return fixture.session().isSessionActive(); }));

    item->press(u"Toggle Stealth"_s);
    EXPECT_TRUE(spinUntil([&] { return fixture.session().isStealthEnabled(); }));

    item->press(u"End Session"_s);
    EXPECT_TRUE(spinUntil([&] { return fixture.ws->countSent<ClientMsg::EndSession>() == 1; }));

    item->press(u"Check for Updates..."_s);
    EXPECT_TRUE(spinUntil([&] { return updater.checks == 1; }));

    item->press(u"Quit Corvellan"_s);
    EXPECT_TRUE(spinUntil([&] { return terminations == 1; }));
}

TEST_F(NotifierTrayTest, aPressOnTheIconShowsTheWindow) {
    item->activate();
    EXPECT_TRUE(spinUntil([&] { return panel.isExposed(); }));
    EXPECT_EQ(desktop.activation.activations.size(), 1U);
}

TEST_F(NotifierTrayTest, aPanelThatRestartsGetsTheIconAgain) {
    host.stop();
    ASSERT_TRUE(spinUntil([] { return !hasWatcher(); }));
    EXPECT_TRUE(spinUntil([&] { return !bar.isShown(); }));

    host.start();

    ASSERT_TRUE(itemComes());
    EXPECT_TRUE(spinUntil([&] { return bar.isShown(); }));
    DBusMenuClient{DBusMenuClient::registeredItems().constFirst()}.press(u"Show Main Window"_s);
    EXPECT_TRUE(spinUntil([&] { return panel.isExposed(); }));
}

TEST_F(NotifierTrayTest, theItemGoesWithTheController) {
    controller.reset();
    EXPECT_TRUE(spinUntil([&] {
        try {
            static_cast<void>(item->properties());
            return false;
        } catch (const std::runtime_error&) {
            return true;
        }
    }));
}

class LateNotifierTrayTest : public MenuBarFixture {
protected:
    TrayStatusBar bar;
};

TEST_F(LateNotifierTrayTest, aPanelThatComesAfterTheProgramGetsTheIcon) {
    build(bar);
    settle();
    EXPECT_FALSE(bar.isShown());

    // The watcher first, then the host, as where a daemon of the desktop keeps the list.
    HostProcess host{{"--late-host"}};
    ASSERT_TRUE(spinUntil(hasWatcher));
    EXPECT_TRUE(DBusMenuClient::registeredItems().isEmpty());
    EXPECT_FALSE(bar.isShown());
    tellWatcher(u"RegisterStatusNotifierHost"_s, {u"org.kde.StatusNotifierHost-1"_s});

    ASSERT_TRUE(itemComes());
    EXPECT_TRUE(spinUntil([&] { return bar.isShown(); }));
    const DBusMenuClient item{DBusMenuClient::registeredItems().constFirst()};
    EXPECT_EQ(item.layout().size(), 10U);
    item.activate();
    EXPECT_TRUE(spinUntil([&] { return panel.isExposed(); }));

    tellWatcher(u"DropHost"_s, {});
    EXPECT_TRUE(spinUntil([&] { return !bar.isShown(); })) << "nobody shows it any more";
}

}  // namespace

}  // namespace corvellan::test
