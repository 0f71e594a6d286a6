import QtQuick
import QtTest
import Corvellan.Views

ScreenCase {
    id: testCase

    name: "SettingsScreen"
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

    /// The window with the settings open.
    function open() {
        const window = createTemporaryObject(content, testCase);
        driver.views.dashboard.selectTab("settings");
        tryVerify(() => findChild(window, "form") !== null);
        draw(window);
        driver.asked("");
        return window;
    }

    /// By mouse, wherever in the form it lies.
    function pressNamed(window, name) {
        const item = control(window, name);
        findChild(window, "form").reveal(item);
        press(item);
    }

    // Ways in and out

    function test_settingsOpenAndClose_data() {
        return [{ tag: "mouse" }, { tag: "keys" }, { tag: "accessibility" }, { tag: "shortcut" }, { tag: "requested" }];
    }

    function test_settingsOpenAndClose(data) {
        const window = createTemporaryObject(content, testCase);
        draw(window);
        const tab = control(window, "tab-settings");
        compare(driver.spoken(tab).name, "Settings");
        if (data.tag === "mouse") {
            press(tab);
        } else if (data.tag === "keys") {
            keyClick(Qt.Key_Backtab);
            while (!tab.activeFocus && !control(window, "tab-home").activeFocus)
                keyClick(Qt.Key_Backtab);
            verify(tab.activeFocus);
            keyClick(Qt.Key_Return);
        } else if (data.tag === "accessibility") {
            verify(driver.pressThroughAccessibility(tab));
        } else if (data.tag === "shortcut") {
            keyClick(Qt.Key_Comma, Qt.ControlModifier);
        } else {
            driver.requestTab("settings");
        }
        tryVerify(() => isSeen(window, "form"));
        tryVerify(() => !isSeen(window, "homeArea"));
        if (data.tag === "mouse")
            press(control(window, "tab-home"));
        else if (data.tag === "accessibility")
            verify(driver.pressThroughAccessibility(control(window, "tab-home")));
        else
            keyClick(Qt.Key_1, Qt.ControlModifier);
        tryVerify(() => isSeen(window, "homeArea"));
        tryVerify(() => !isSeen(window, "form"));
    }

    function test_escapeClosesAnOpenPicker() {
        const window = open();
        const picker = control(window, "serverMode");
        pressNamed(window, "serverMode");
        tryVerify(() => picker.popup.opened);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !picker.popup.visible);
        verify(findChild(window, "form"));
    }

    function test_aCallTakesTheirPlace() {
        const window = open();
        driver.startCall("");
        tryVerify(() => findChild(window, "endSession") !== null);
        tryVerify(() => findChild(window, "form") === null);
    }

    // What is shown

    function test_theTenSectionsStandInTheirOrder() {
        const window = open();
        const titles = ["Server", "Account", "General", "Display", "Screen context", "HubSpot Sensor",
                        "Call Detection", "TTS Voice", "Permissions", "About"];
        compare(shownTexts(control(window, "form")).filter(text => titles.includes(text)), titles);
    }

    function test_theTextsStandAsTheyAreMeant() {
        const window = open();
        const texts = shownTexts(control(window, "form"));
        for (const text of ["Mode", "Status", "Dev mode (no auth required)", "Launch at login", "Coaching font size",
                            "Share active window with coach",
                            "Lets the coach see the frontmost window you're working on (HubSpot, deck, notes). Nothing is uploaded unless the screen changes, and frames are never written to disk.",
                            "Chrome Extension", "Not connected",
                            "Install the Chrome extension to auto-detect HubSpot calls and contacts.",
                            "Install Corvellan Sensor", "Auto-start coaching on call", "Check Status",
                            "Meeting reminders", "Notify 2 minutes before calendar meetings to start coaching",
                            "Global Hotkey", "Cmd+Shift+J", "Notifications", "Test Notification",
                            "Request Permission", "Microphone", "Your voice", "Screen Recording",
                            "Customer voice (Zoom/Meet)", "Open System Settings",
                            "Corvellan Bram — AI sales coach by Teskara. Invisible during screen share, real-time MEDDIC tracking and call guidance.",
                            "Version", "1.2.3", "Build", "45", "Check for Updates"])
            verify(texts.includes(text), text);
        for (const text of ["WebSocket URL", "Viewing", "Call", "Logout", "Login with Teskara"])
            verify(!texts.includes(text), text);
    }

    function test_theServersRowFollowsTheSession() {
        const window = open();
        compare(control(window, "connectionDot").width, 6);
        compare(control(window, "connectionDot").height, 6);
        verify(Qt.colorEqual(control(window, "connectionDot").color, driver.views.theme.gray));
        driver.setConnected(true);
        driver.setStatus("Listening...");
        verify(Qt.colorEqual(control(window, "connectionDot").color, driver.views.theme.green));
        compare(control(window, "statusText").text, "Listening...");
    }

    function test_theAccountFollowsTheUser() {
        const window = open();
        verify(!control(window, "login").visible);
        verify(!control(window, "logout").visible);
        driver.views.settings.serverModeIndex = 0;
        compare(control(window, "accountRow").label, "Not signed in");
        compare(control(window, "accountRow").labelColorName, "orange");
        verify(draw(window));
        pressNamed(window, "login");
        compare(driver.asked("auth.login"), 1);
        driver.setUser("ada@teskara.test");
        compare(control(window, "accountRow").label, "Signed in");
        compare(control(window, "account").text, "ada@teskara.test");
        verify(!control(window, "login").visible);
        verify(draw(window));
        pressNamed(window, "logout");
        compare(driver.asked("auth.logout"), 1);
    }

    function test_theExtensionsRowsFollowTheLink() {
        const window = open();
        verify(control(window, "installRow").visible);
        pressNamed(window, "installSensor");
        compare(driver.openedPage(), "https://store.test/corvellan-sensor");
        const link = control(window, "installSensor");
        compare(driver.spoken(link).role, Accessible.Link);
        compare(driver.spoken(link).name, "Install Corvellan Sensor");
        compare(driver.asked("browser.open"), 1);
        link.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        keyClick(Qt.Key_Space);
        verify(driver.pressThroughAccessibility(link));
        compare(driver.asked("browser.open"), 4);

        driver.setSensor(true, "Sandra Weiss", "Nordwind", true);
        compare(control(window, "sensorText").text, "Connected");
        verify(!control(window, "installRow").visible);
        compare(control(window, "viewing").text, "Sandra Weiss (Nordwind)");
        verify(control(window, "callRow").visible);
        compare(control(window, "call").text, "Active");
        verify(Qt.colorEqual(control(window, "call").color, driver.views.theme.named.red));

        driver.setSensor(true, "", "", false);
        verify(!control(window, "viewingRow").visible);
        verify(!control(window, "callRow").visible);
    }

    function test_theHotkeysRowSaysWhetherItWorks() {
        const window = open();
        const row = control(window, "hotkeyRow");
        verify(row.caption.includes("Super"));
        verify(findChild(row, "notice").visible, "nobody watches yet");
        driver.setKeyWatch(true, "");
        verify(!findChild(row, "notice").visible);
        driver.setKeyWatch(false, "No display server");
        compare(findChild(row, "notice").text, "No display server");
        verify(Qt.colorEqual(findChild(row, "notice").color, driver.views.theme.orange));
    }

    function test_permissionsAndNotificationsAreReadOnOpening() {
        driver.setPermissions("denied", false);
        driver.setNotifications("denied");
        const window = open();
        tryCompare(control(window, "permissionStatus0"), "text", "Your voice — not allowed");
        tryCompare(control(window, "permissionStatus1"), "text", "Customer voice (Zoom/Meet) — not allowed");
        verify(Qt.colorEqual(control(window, "permissionStatus0").color, driver.views.theme.named.red));
        tryCompare(control(window, "notificationStatus"), "text", "Denied — enable in System Settings");
        verify(Qt.colorEqual(control(window, "notificationDot").color, driver.views.theme.named.red));
        pressNamed(window, "openSystemSettings");
        compare(driver.asked("settings.openPrivacyPane"), 1);
    }

    function test_theHidingFromCaptureIsTold() {
        const window = open();
        const row = control(window, "hiddenRow");
        compare(row.label, "Hidden from screen capture");
        compare(row.caption, driver.views.stealth.statusText);
        verify(row.caption.length > 0);
        verify(!control(window, "hidingAdvice").visible);
        verify(!control(window, "testHiding").visible, "nothing here can picture the screen");
        driver.setHidingOffer("doesNotHide", "This desktop has no such thing.");
        verify(row.caption.includes("This desktop has no such thing."));
    }

    function test_linesForTheDesktopsConfigurationAreCopiedAsTheyAre() {
        const lines = "window-rule {\n    block-out-from \"screencast\"\n}";
        driver.setHidingAdvice(lines);
        const window = open();
        const advice = control(window, "hidingAdvice");
        verify(advice.visible);
        compare(findChild(advice, "code").text, lines);
        pressNamed(window, "copyCode");
        compare(driver.clipboard(), lines);
        // The lines themselves can be reached and left.
        const code = findChild(advice, "code");
        code.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_A);
        compare(code.text, lines, "nothing is written there");
        keyClick(Qt.Key_Tab);
        verify(findChild(advice, "copyCode").activeFocus);
        keyClick(Qt.Key_Backtab);
        verify(code.activeFocus);
        keyClick(Qt.Key_Backtab);
        verify(control(window, "shareScreen").activeFocus);
    }

    // What presses do

    function test_switches_data() {
        return [{ tag: "launchAtLogin", stored: "", startsOn: false },
                { tag: "shareScreen", stored: "screenShareEnabled", startsOn: false },
                { tag: "autoStart", stored: "autoStartOnCall", startsOn: true },
                { tag: "meetingReminders", stored: "meetingReminders", startsOn: true }];
    }

    function test_switches(data) {
        const window = open();
        const item = control(window, data.tag);
        let isOn = data.startsOn;
        const check = how => {
            compare(item.isOn, isOn, how);
            compare(item.checked, isOn, how);
            compare(driver.spoken(item).isChecked, isOn, how);
            if (data.stored.length > 0)
                compare(driver.stored(data.stored), isOn, how);
            else
                compare(driver.isLoginItem(), isOn, how);
        };
        compare(driver.spoken(item).role, Accessible.CheckBox);
        verify(driver.spoken(item).isCheckable);
        verify(driver.spoken(item).name.length > 0);
        compare(item.isOn, isOn);
        pressNamed(window, data.tag);
        isOn = !isOn;
        check("mouse");
        item.forceActiveFocus(Qt.TabFocusReason);
        for (const key of [Qt.Key_Space, Qt.Key_Return]) {
            keyClick(key);
            isOn = !isOn;
            check("key");
        }
        verify(driver.pressThroughAccessibility(item));
        isOn = !isOn;
        check("accessibility");
    }

    function test_aRefusedLoginItemSetsTheSwitchBack() {
        driver.refuseLoginItems();
        const window = open();
        pressNamed(window, "launchAtLogin");
        const item = control(window, "launchAtLogin");
        verify(!item.isOn);
        verify(!item.checked);
        verify(!driver.spoken(item).isChecked);
    }

    function test_theServerIsPickedByMouse() {
        const window = open();
        const picker = control(window, "serverMode");
        compare(picker.displayText, "Local (dev)");
        pressNamed(window, "serverMode");
        tryVerify(() => picker.popup.opened);
        press(picker.popup.contentItem.itemAtIndex(0));
        tryVerify(() => !picker.popup.visible);
        compare(picker.displayText, "Production");
        compare(driver.stored("serverMode"), "production");
        compare(driver.serverURL(), "wss://coach.test/ws");
    }

    function test_theServerIsPickedByKeyboard() {
        const window = open();
        const picker = control(window, "serverMode");
        picker.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        compare(driver.stored("serverMode"), "custom");
        keyClick(Qt.Key_Up);
        keyClick(Qt.Key_Up);
        compare(driver.stored("serverMode"), "production");
        for (const key of [Qt.Key_Space, Qt.Key_Return]) {
            keyClick(key);
            tryVerify(() => picker.popup.opened);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Return);
            tryVerify(() => !picker.popup.visible);
        }
        compare(driver.stored("serverMode"), "custom");
        compare(driver.spoken(picker).role, Accessible.ComboBox);
        compare(driver.spoken(picker).name, "Mode: Custom");
    }

    function test_theServerIsPickedThroughAccessibility() {
        const window = open();
        const picker = control(window, "serverMode");
        verify(driver.pressThroughAccessibility(picker));
        tryVerify(() => picker.popup.opened);
        const choice = picker.popup.contentItem.itemAtIndex(2);
        compare(driver.spoken(choice).name, "Custom");
        verify(driver.pressThroughAccessibility(choice));
        compare(driver.stored("serverMode"), "custom");
    }

    function test_aPickerFollowsWhatIsStoredEvenAfterAChoice() {
        const window = open();
        const picker = control(window, "fontSize");
        picker.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        compare(driver.stored("fontScale"), 2);
        compare(picker.displayText, "Extra Large (2x)");
        driver.setFontScale(1);
        compare(picker.displayText, "Normal");
        driver.setFontScale(1.2);
        compare(picker.currentIndex, -1);
        compare(picker.displayText, "1.2x");
    }

    function test_theCustomAddressIsAppliedLetterByLetter() {
        const window = open();
        driver.views.settings.serverModeIndex = 2;
        const field = control(window, "customServerURL");
        verify(field.visible);
        compare(field.placeholderText, "ws://...");
        compare(driver.serverURL(), "wss://coach.test/ws");
        field.forceActiveFocus(Qt.TabFocusReason);
        keyClick("w");
        keyClick("s");
        compare(field.text, "ws");
        compare(driver.stored("customServerURL"), "ws");
        compare(driver.serverURL(), "ws");
        keyClick(Qt.Key_Backspace);
        keyClick(Qt.Key_Backspace);
        compare(driver.serverURL(), "wss://coach.test/ws");
        compare(driver.spoken(field).name, "WebSocket URL");
    }

    function customAddress(window, stored) {
        driver.views.settings.customServerURL = stored;
        driver.views.settings.serverModeIndex = 2;
        const field = control(window, "customServerURL");
        tryVerify(() => field.visible);
        return field;
    }

    function test_escapeGivesBackTheAddressAndThenLeaves() {
        const window = open();
        const field = customAddress(window, "ws://a");
        field.forceActiveFocus(Qt.TabFocusReason);
        field.cursorPosition = field.length;
        type("bc");
        compare(driver.serverURL(), "ws://abc");
        keyClick(Qt.Key_Escape);
        verify(field.activeFocus, "one thing at a time");
        compare(field.text, "ws://a");
        compare(driver.stored("customServerURL"), "ws://a");
        compare(driver.serverURL(), "ws://a");
        keyClick(Qt.Key_Escape);
        verify(!field.activeFocus);
        compare(field.text, "ws://a");
        // The screen stays, and its keys go on.
        verify(findChild(window, "form"));
        keyClick(Qt.Key_End);
        tryVerify(() => control(window, "aboutRow").mapToItem(control(window, "form"), 0, 0).y < control(window, "form").height);

        // What it gives back is what stood there this time, and it shows what is stored as ever.
        field.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_A, Qt.ControlModifier);
        type("x");
        keyClick(Qt.Key_Tab);
        field.forceActiveFocus(Qt.TabFocusReason);
        type("y");
        keyClick(Qt.Key_Escape);
        compare(driver.stored("customServerURL"), "x");
        driver.views.settings.customServerURL = "ws://elsewhere";
        compare(field.text, "ws://elsewhere");
    }

    function test_returnSettlesOnTheAddress() {
        const window = open();
        const field = customAddress(window, "");
        field.forceActiveFocus(Qt.TabFocusReason);
        type("ws");
        keyClick(Qt.Key_Return);
        keyClick(Qt.Key_Escape);
        verify(!field.activeFocus);
        compare(driver.stored("customServerURL"), "ws");
    }

    function test_anAddressThatAScreenReaderWritesCounts() {
        const window = open();
        const field = customAddress(window, "");
        verify(driver.writeThroughAccessibility(field, "ws://spoken"));
        compare(driver.stored("customServerURL"), "ws://spoken");
        compare(driver.serverURL(), "ws://spoken");
    }

    function test_theVoicesRowTellsWhoSpeaks() {
        const window = open();
        const row = control(window, "voiceRow");
        tryVerify(() => row.caption.startsWith("No speech engine works"));
        driver.setVoice("espeak-ng", "us1");
        driver.views.settings.appear();
        tryCompare(row, "caption", "espeak-ng speaks, with the voice us1 (enhanced).");
    }

    function test_buttons_data() {
        return [{ tag: "testNotification", step: "notifications.add" },
                { tag: "requestNotifications", step: "notifications.requestAuthorization" },
                { tag: "openSystemSettings", step: "settings.openPrivacyPane" }];
    }

    function test_buttons(data) {
        const window = open();
        pressNamed(window, data.tag);
        compare(driver.asked(data.step), 1);
        const button = control(window, data.tag);
        button.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        compare(driver.asked(data.step), 2);
        keyClick(Qt.Key_Return);
        compare(driver.asked(data.step), 3);
        verify(driver.pressThroughAccessibility(button));
        compare(driver.asked(data.step), 4);
        compare(driver.spoken(button).role, Accessible.Button);
        compare(driver.spoken(button).name, button.text);
    }

    function test_updatesAreCheckedWhereThereIsAnUpdater() {
        const window = open();
        const button = control(window, "checkForUpdates");
        verify(!button.enabled);
        driver.provideUpdater();
        verify(button.enabled);
        pressNamed(window, "checkForUpdates");
        compare(driver.updateChecks(), 1);
    }

    // Keyboard, sizes, looks

    function test_everyControlIsReachedInOrderAndBroughtIntoView_data() {
        return [{ tag: "standard", width: 680, height: 520 }, { tag: "smallest", width: 520, height: 400 },
                { tag: "call size, which a font size leaves", width: 700, height: 350 }];
    }

    function test_everyControlIsReachedInOrderAndBroughtIntoView(data) {
        driver.views.settings.serverModeIndex = 2;
        driver.setUser("ada@teskara.test");
        driver.provideUpdater();
        const window = open();
        window.width = data.width;
        window.height = data.height;
        draw(window);
        const form = control(window, "form");
        const order = ["serverMode", "customServerURL", "logout", "launchAtLogin", "fontSize", "shareScreen",
                       "installSensor", "autoStart", "checkStatus", "meetingReminders", "testNotification",
                       "requestNotifications", "openSystemSettings", "checkForUpdates"];
        keyClick(Qt.Key_Tab);
        for (let i = 0; i < order.length; ++i) {
            const item = control(window, order[i]);
            verify(item.activeFocus, "reached " + order[i] + ", not " + window.Window.activeFocusItem.objectName);
            verify(item.height >= driver.views.theme.hitTarget, order[i]);
            const top = item.mapToItem(form, 0, 0).y;
            verify(top >= 0 && top + item.height <= form.height, order[i] + " is in view");
            const left = item.mapToItem(form, 0, 0).x;
            verify(left >= 0 && left + item.width <= form.width, order[i] + " is not cut off");
            keyClick(Qt.Key_Tab);
        }
        keyClick(Qt.Key_Backtab);
        verify(control(window, "checkForUpdates").activeFocus);
    }

    function test_pageKeysScrollFromAnywhere() {
        const window = open();
        const about = control(window, "aboutRow");
        const form = control(window, "form");
        const isInView = item => {
            const top = item.mapToItem(form, 0, 0).y;
            return top >= 0 && top + item.height <= form.height;
        };
        verify(!isInView(about));
        keyClick(Qt.Key_End);
        verify(isInView(about));
        keyClick(Qt.Key_Home);
        verify(isInView(control(window, "serverMode")));
        control(window, "serverMode").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_PageDown);
        verify(!isInView(control(window, "serverMode")));
    }

    function collectTexts(item, found) {
        if (!item.visible)
            return;
        if (item.contentWidth !== undefined && item.text !== undefined && item.text.length > 0
                && item.truncated !== undefined)
            found.push(item);
        for (let i = 0; i < item.children.length; ++i)
            collectTexts(item.children[i], found);
    }

    function test_noTextIsCutOff_data() {
        return [{ tag: "standard", width: 680, height: 520 }, { tag: "smallest", width: 520, height: 400 },
                { tag: "largest", width: 900, height: 700 }];
    }

    function test_noTextIsCutOff(data) {
        driver.views.settings.serverModeIndex = 0;
        driver.setUser("sandra.weiss-oberhauser@nordwind-logistics-holding.example");
        driver.setStatus("The coaching server could not be reached: the connection was refused by the proxy");
        driver.setSensor(true, "Sandra Weiss-Oberhauser", "Nordwind Logistics Holding of Northern Europe", true);
        driver.setKeyWatch(false, "The desktop lets no program see keys that are pressed in others; the shortcut can be set up in its own settings instead.");
        driver.setPermissions("denied", false);
        driver.setNotifications("denied");
        driver.setFontScale(2);
        const window = open();
        window.width = data.width;
        window.height = data.height;
        draw(window);
        tryCompare(control(window, "permissionStatus1"), "text", "Customer voice (Zoom/Meet) — not allowed");
        const form = control(window, "form");
        const texts = [];
        collectTexts(form, texts);
        verify(texts.length > 40);
        for (const text of texts) {
            verify(!text.truncated, text.text);
            verify(text.contentWidth <= text.width + 1, text.text);
            const left = text.mapToItem(form, 0, 0).x;
            verify(left >= 0 && left + text.width <= form.width, text.text);
        }
    }

    function test_theFormFollowsTheScheme() {
        const window = open();
        const title = control(window, "title");
        verify(Qt.colorEqual(title.color, "white"));
        driver.setDark(false);
        verify(title.color.hslLightness < 0.2);
        driver.startCall("");
        tryVerify(() => findChild(window, "endSession") !== null);
        verify(Qt.colorEqual(findChild(window, "message").color.a > 0 ? driver.views.callTheme.foreground : "red", "white"));
    }
}
