import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "DashboardScreen"
    width: 680
    height: 520

    Component {
        id: content

        Main {
            width: 680
            height: 520
            views: driver.views
        }
    }

    Component {
        id: hiddenWindow

        Window {
            property alias content: main

            width: 680
            height: 520
            visible: false

            Main {
                id: main

                anchors.fill: parent
                views: driver.views
            }
        }
    }

    function init() {
        driver.reset();
    }

    function make() {
        const window = createTemporaryObject(content, testCase);
        draw(window);
        return window;
    }

    function test_theOpenTabIsLitAndItsScreenShown() {
        const window = make();
        verify(control(window, "tab-home").isSelected);
        verify(driver.spoken(control(window, "tab-home")).isSelected);
        press(control(window, "tab-settings"));
        verify(control(window, "tab-settings").isSelected);
        verify(!control(window, "tab-home").isSelected);
        tryVerify(() => findChild(window, "form") !== null);
    }

    function test_tabsModesAndDeedsAreSpokenAsWhatTheyAre() {
        const window = make();
        for (const [name, role] of [["tab-home", Accessible.PageTab], ["tab-settings", Accessible.PageTab],
                                    ["mode-0", Accessible.RadioButton], ["mode-1", Accessible.RadioButton],
                                    ["crmChat", Accessible.Button]])
            compare(driver.spoken(control(window, name)).role, role, name);
        verify(!driver.spoken(control(window, "tab-settings")).isSelected);
        verify(driver.spoken(control(window, "mode-0")).isCheckable);
        verify(driver.pressThroughAccessibility(control(window, "tab-settings")));
        verify(driver.spoken(control(window, "tab-settings")).isSelected);
        verify(!driver.spoken(control(window, "tab-home")).isSelected);
        verify(driver.pressThroughAccessibility(control(window, "mode-1")));
        verify(driver.spoken(control(window, "mode-1")).isChecked);
        verify(!driver.spoken(control(window, "mode-0")).isChecked);
    }

    function test_arrowsWalkAlongTheTabs() {
        const window = make();
        const home = control(window, "tab-home");
        home.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Up);
        verify(home.activeFocus);
        keyClick(Qt.Key_Down);
        verify(!home.activeFocus);
        keyClick(Qt.Key_Up);
        verify(home.activeFocus);
    }

    function test_signedOutThereIsALogin() {
        driver.useProductionServer();
        const window = make();
        verify(control(window, "sidebar-login").visible);
        verify(!control(window, "sidebar-account").visible);
        compare(driver.spoken(control(window, "sidebar-login")).name, "Login");
        press(control(window, "sidebar-login"));
        verify(driver.asked("auth.login") > 0);
    }

    function test_aSignedInUserSignsOutByAPress() {
        driver.useProductionServer();
        driver.setUser("sandra.weiss@nordwind.example");
        const window = make();
        const account = control(window, "sidebar-account");
        verify(account.visible);
        compare(account.text, "sandra.weiss");
        verify(!control(window, "sidebar-login").visible);
        press(account);
        tryVerify(() => driver.asked("auth.logout") > 0);
        tryVerify(() => !account.visible);
    }

    function test_aModeIsChosenByMouseAndKeys() {
        const window = make();
        const first = control(window, "mode-0");
        verify(first.isSelected);
        press(control(window, "mode-2"));
        verify(control(window, "mode-2").isSelected);
        verify(!first.isSelected);
        compare(driver.spoken(control(window, "mode-2")).isChecked, true);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Space);
        verify(control(window, "mode-3").isSelected);
        compare(driver.stored("coachingMode"), "discovery");
    }

    function test_anUpdateIsOfferedInGreen() {
        driver.provideUpdater();
        const window = make();
        const update = control(window, "sidebar-update");
        verify(!update.visible);
        driver.offerUpdate();
        verify(update.visible);
        compare(update.text, "Update Available");
        compare(update.plainColor, driver.views.theme.green);
        press(update);
        compare(driver.updateChecks(), 1);
    }

    function test_theChatOpensInTheBrowser() {
        const window = make();
        press(control(window, "crmChat"));
        compare(driver.openedPage(), "https://chat.test");
    }

    function test_theCaptionNamesTheVersion() {
        compare(control(make(), "sidebar-version").text, "v1.2.3");
    }

    /// The plain rectangles in `item` that show something: at broken ratios they are not sharp.
    function plainRectangles(item) {
        let found = item.toString().startsWith("QQuickRectangle") && !item.gradient ? [item] : [];
        for (let i = 0; i < item.children.length; ++i)
            found = found.concat(plainRectangles(item.children[i]));
        return found;
    }

    function test_everyLineAndGroundIsSharpAtAnyRatio() {
        const window = make();
        for (const tab of driver.views.dashboard.visibleTabs) {
            driver.views.dashboard.selectTab(tab.name);
            draw(window);
            compare(plainRectangles(control(window, "face")).length, 0, tab.name);
        }
    }

    function test_everythingIsReachedAtTheSmallestSize() {
        driver.useProductionServer();
        driver.setUser("sandra.weiss@nordwind.example");
        driver.offerUpdate();
        const window = make();
        window.width = 520;
        window.height = 400;
        draw(window);
        const list = control(window, "sidebarList");
        const last = control(window, "mode-3");
        last.forceActiveFocus(Qt.TabFocusReason);
        tryVerify(() => last.mapToItem(list, 0, last.height).y <= list.height + 1);
        const version = control(window, "sidebar-version");
        verify(version.mapToItem(window, 0, version.height).y <= window.height);
    }

    // Screens that are made before anybody asks for them

    function ready(window, tab) {
        const stage = control(window, "detail");
        tryVerify(() => {
            window.Window.window.update();
            return stage.isReady(tab);
        });
        return stage;
    }

    function test_everyOtherScreenIsMadeReady() {
        const window = make();
        for (const tab of ["calendar", "train", "history", "memory", "guide", "settings"])
            ready(window, tab);
        verify(!control(window, "detail").isReady("home"));
        driver.views.dashboard.selectTab("guide");
        verify(!control(window, "detail").isReady("guide"));
        ready(window, "home");
    }

    function test_aWindowThatIsHiddenHasNoScreensMade() {
        const hidden = createTemporaryObject(hiddenWindow, testCase);
        const stage = control(hidden.content, "detail");
        const other = make();
        for (const tab of ["calendar", "train", "history", "memory", "guide", "settings"])
            ready(other, tab);
        verify(!stage.prepared["calendar"]);
        hidden.visible = true;
        ready(hidden.content, "calendar");
    }

    function test_aScreenThatIsReadyShowsWhatHoldsWhenItIsOpened() {
        const window = make();
        ready(window, "memory");
        driver.setNoteFile("North ".repeat(400));
        driver.views.dashboard.selectTab("memory");
        draw(window);
        const counter = control(window, "memoryCounter");
        compare(counter.text, "2400/2000");
        verify(counter.contentWidth <= counter.width + 1);
        const place = driver.placeAfterLayout(counter);
        verify(place.x >= 0 && place.x + place.width <= window.width);
    }

    function test_nothingIsAskedForAScreenThatNobodyHasOpened() {
        const window = make();
        const asked = driver.asked("permissions.microphoneAuthorization");
        ready(window, "settings");
        compare(driver.asked("permissions.microphoneAuthorization"), asked);
        driver.views.dashboard.selectTab("settings");
        verify(driver.asked("permissions.microphoneAuthorization") > asked);
    }

    function test_aScreenThatIsReadyIsOutOfReach() {
        const window = make();
        const stage = ready(window, "settings");
        compare(stage.shown.parent.children.length, 1);
        for (let i = 0; i < 100; ++i) {
            keyClick(Qt.Key_Tab);
            const item = window.Window.activeFocusItem;
            verify(item.mapToItem(window, 0, 0).x < window.width);
        }
        const field = findChild(stage, "saveMemory");
        verify(field !== null);
        verify(!field.enabled);
        verify(driver.placeAfterLayout(field).x >= window.width);
    }

    function test_nothingTurnsOnAScreenThatNobodyHasOpened() {
        const window = make();
        ready(window, "train");
        const spinner = control(window, "scenarioWait").children[0];
        verify(spinner.visible);
        verify(!spinner.isTurning);
        driver.views.dashboard.selectTab("train");
        compare(spinner.isTurning, spinner.visible);
    }

    function test_aWindowOfAnotherSizeHasItsScreensMadeAnew() {
        const window = make();
        const stage = ready(window, "settings");
        window.width = 800;
        verify(!stage.isReady("settings"));
        ready(window, "settings");
        driver.views.dashboard.selectTab("settings");
        compare(stage.shown.width, stage.width);
    }

    function test_eachVisitBeginsAnew() {
        const window = make();
        ready(window, "guide");
        driver.views.dashboard.selectTab("guide");
        const area = control(window, "guideArea");
        verify(area.scrollByKey(Qt.Key_End));
        const title = () => control(control(window, "detail").shown, "guideTitle");
        verify(driver.placeAfterLayout(title()).y < 0);
        driver.views.dashboard.selectTab("home");
        ready(window, "guide");
        driver.views.dashboard.selectTab("guide");
        draw(window);
        verify(driver.placeAfterLayout(title()).y >= 0);
    }

    function test_theKeyboardIsInTheScreenThatWasReady() {
        const window = make();
        ready(window, "memory");
        control(window, "face").forceActiveFocus();
        keyClick("5", Qt.ControlModifier);
        const stage = control(window, "detail");
        tryVerify(() => stage.shown.activeFocus);
    }

    function test_visitsLeaveNothingBehind() {
        const window = make();
        const stage = ready(window, "settings");
        for (let visit = 0; visit < 10; ++visit) {
            driver.views.dashboard.selectTab(visit % 2 === 0 ? "guide" : "home");
            ready(window, visit % 2 === 0 ? "home" : "guide");
        }
        for (const tab of ["calendar", "train", "history", "memory", "guide", "settings"])
            ready(window, tab);
        let screens = 0;
        for (let i = 0; i < stage.children.length; ++i)
            screens += stage.children[i].children.length;
        compare(screens, 7);
    }
}
