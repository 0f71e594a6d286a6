pragma ComponentBehavior: Bound

import QtQuick
import Corvellan.Views

/// The window between calls: the sidebar, and the screen of the tab that is open.
FocusScope {
    id: root

    required property ViewStates views
    readonly property Theme theme: views.theme
    readonly property string openTab: views.dashboard.selectedTab

    focus: true

    function showTab() {
        switch (openTab) {
        case "calendar":
            detail.setSource("CalendarScreen.qml", { calendar: views.calendar, theme: theme });
            break;
        case "train":
            detail.setSource("ScenarioPickerScreen.qml", { picker: views.training, theme: theme });
            break;
        case "history":
            detail.setSource("SessionHistoryScreen.qml", { history: views.history, theme: theme });
            break;
        case "memory":
            detail.setSource("MemoryScreen.qml", { memory: views.memory, theme: theme });
            break;
        case "guide":
            detail.setSource("GuideScreen.qml", { guide: views.guide, stealth: views.stealth, theme: theme });
            break;
        case "settings":
            detail.setSource("SettingsScreen.qml", { settings: views.settings, stealth: views.stealth, theme: theme });
            break;
        default:
            detail.setSource("HomeScreen.qml", { home: views.home, theme: theme });
        }
    }

    Component.onCompleted: showTab()
    onOpenTabChanged: showTab()

    Shortcut {
        sequence: "Ctrl+,"
        onActivated: root.views.dashboard.selectTab("settings")
    }
    Repeater {
        model: root.views.dashboard.visibleTabs

        Item {
            id: place

            required property var modelData
            required property int index

            Shortcut {
                sequence: "Ctrl+" + (place.index + 1)
                onActivated: root.views.dashboard.selectTab(place.modelData.name)
            }
        }
    }

    Sidebar {
        id: sidebar

        width: implicitWidth
        height: parent.height
        objectName: "sidebar"
        dashboard: root.views.dashboard
        theme: root.theme
    }
    Rectangle {
        x: sidebar.width
        width: 1
        height: parent.height
        color: root.theme.hairline
    }
    Loader {
        id: detail

        x: sidebar.width + 1
        width: parent.width - x
        height: parent.height
        objectName: "detail"
        // The screen has the keyboard, and Tab goes on from the sidebar.
        focus: true
    }
}
