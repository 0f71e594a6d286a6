pragma ComponentBehavior: Bound

import QtQuick
import Corvellan.Views

/// Shows the screen of the open tab. To make one and draw it takes longer than a frame may, so the others are made
/// beforehand, one between two frames; each visit gets a screen of its own, as it is at first.
FocusScope {
    id: root

    required property ViewStates views
    readonly property Theme theme: views.theme
    readonly property string openTab: views.dashboard.selectedTab
    /// A program that starts into the tray makes no screens for a window that may never be seen.
    readonly property bool isWindowShown: Window.visibility !== Window.Hidden
    /// By tab: screens that nobody has seen; null for none. They are made in one go: what Qt's layouts are asked to lay
    /// out while a screen is made bit by bit, they never do.
    property var prepared: ({})
    /// By tab: whether a frame has come since its screen was there. Before that, what changes with its appearance
    /// would be lost on Qt's layouts.
    property var laidOut: ({})
    property bool isLayingOut: false
    property Item shown: null

    /// Whether a switch to `tab` is only a matter of drawing it.
    function isReady(tab: string): bool {
        return laidOut[tab] === true;
    }

    function file(tab: string): string {
        const files = {
            calendar: "CalendarScreen.qml",
            train: "ScenarioPickerScreen.qml",
            history: "SessionHistoryScreen.qml",
            memory: "MemoryScreen.qml",
            guide: "GuideScreen.qml",
            settings: "SettingsScreen.qml"
        };
        return files[tab] ?? "HomeScreen.qml";
    }

    /// What the screen of `tab` is handed.
    function properties(tab: string): var {
        switch (tab) {
        case "calendar":
            return { calendar: views.calendar, theme: theme };
        case "train":
            return { picker: views.training, theme: theme };
        case "history":
            return { history: views.history, theme: theme };
        case "memory":
            return { memory: views.memory, theme: theme };
        case "guide":
            return { guide: views.guide, stealth: views.stealth, theme: theme };
        case "settings":
            return { settings: views.settings, stealth: views.stealth, theme: theme };
        default:
            return { home: views.home, theme: theme };
        }
    }

    function prepare(tab: string) {
        const handed = properties(tab);
        handed.isOnStage = false;
        prepared[tab] = Qt.createComponent(file(tab)).createObject(wings, handed);
        laidOut[tab] = false;
        isLayingOut = true;
    }

    /// The one that was made for `tab`, if any, which is then somebody else's.
    function taken(tab: string): Item {
        const screen = prepared[tab] ?? null;
        prepared[tab] = null;
        laidOut[tab] = false;
        return screen;
    }

    function show() {
        discard(shown);
        if (isReady(openTab)) {
            shown = taken(openTab);
            shown.parent = scene;
            // In the wings only one could keep it.
            shown.focus = true;
            shown.isOnStage = true;
        } else {
            discard(taken(openTab));
            shown = Qt.createComponent(file(openTab)).createObject(scene, properties(openTab));
        }
        idle.restart();
    }

    function discard(screen: var) {
        if (!screen)
            return;
        screen.isOnStage = false;
        screen.parent = null;
        screen.destroy();
    }

    /// Away with those that nobody has seen.
    function clear() {
        for (const tab in prepared)
            discard(taken(tab));
        idle.restart();
    }

    Component.onCompleted: show()
    onOpenTabChanged: show()
    onIsWindowShownChanged: idle.restart()
    // A window that is dragged larger has enough to do with the screen that is seen.
    onWidthChanged: clear()
    onHeightChanged: clear()

    FocusScope {
        id: scene

        anchors.fill: parent
        focus: true
    }
    // Outside the window, where nothing is painted, but all is laid out; to hide them would lay them out again.
    FocusScope {
        id: wings

        x: root.Window.width
        width: parent.width
        height: parent.height
        enabled: false
    }

    Timer {
        id: idle

        interval: 20
        running: true
        onTriggered: {
            if (!root.isWindowShown)
                return;
            for (const tab of root.views.dashboard.visibleTabs) {
                if (!root.prepared[tab.name] && tab.name !== root.openTab) {
                    root.prepare(tab.name);
                    restart();
                    return;
                }
            }
        }
    }
    Connections {
        target: root.isLayingOut ? root.Window.window : null

        function onFrameSwapped() {
            root.isLayingOut = false;
            for (const tab in root.prepared)
                root.laidOut[tab] = root.prepared[tab] !== null;
        }
    }
    Connections {
        target: root.views.dashboard

        function onVisibleTabsChanged() {
            idle.restart();
        }
    }
}
