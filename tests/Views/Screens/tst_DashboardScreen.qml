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

    function init() {
        driver.reset();
    }

    function make() {
        const window = createTemporaryObject(content, testCase);
        waitForRendering(window);
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

    function test_everythingIsReachedAtTheSmallestSize() {
        driver.useProductionServer();
        driver.setUser("sandra.weiss@nordwind.example");
        driver.offerUpdate();
        const window = make();
        window.width = 520;
        window.height = 400;
        waitForRendering(window);
        const list = control(window, "sidebarList");
        const last = control(window, "mode-3");
        last.forceActiveFocus(Qt.TabFocusReason);
        tryVerify(() => last.mapToItem(list, 0, last.height).y <= list.height + 1);
        const version = control(window, "sidebar-version");
        verify(version.mapToItem(window, 0, version.height).y <= window.height);
    }
}
