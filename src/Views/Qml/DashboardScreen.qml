pragma ComponentBehavior: Bound

import QtQuick
import Corvellan.Views

/// The window between calls: the sidebar, and the screen of the tab that is open.
FocusScope {
    id: root

    required property ViewStates views
    readonly property Theme theme: views.theme

    focus: true

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
    Divider {
        x: sidebar.width
        width: 1
        height: parent.height
        theme: root.theme
    }
    TabStage {
        x: sidebar.width + 1
        width: parent.width - x
        height: parent.height
        objectName: "detail"
        views: root.views
        // The screen has the keyboard, and Tab goes on from the sidebar.
        focus: true
    }
}
