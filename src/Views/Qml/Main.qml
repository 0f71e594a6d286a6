import QtQuick
import Corvellan.Views

/// The content of the program's one window: its surface, and the face that is on.
Item {
    id: root

    required property MainView main
    required property CoachingOverlayView overlay
    required property IdleView idle
    required property SettingsView settings
    required property StealthView stealth
    required property Theme theme
    /// That of the call's panel, which is dark whatever the desktop is.
    required property Theme callTheme

    Rectangle {
        anchors.fill: parent
        color: root.main.surfaceColor
        radius: root.main.surfaceRadius
    }

    WindowMover {
        anchors.fill: parent
        onMoveRequested: root.Window.window.startSystemMove()
    }

    Loader {
        id: face

        anchors.fill: parent
        objectName: "face"
        focus: true
    }

    CaptureMarker {
        x: 2
        y: 2
        z: 1
        objectName: "captureMarker"
        stealth: root.stealth
    }

    function showFace() {
        if (main.face === "call")
            face.setSource("CoachingOverlayScreen.qml", { overlay: overlay, theme: callTheme, stealth: stealth });
        else if (main.face === "settings")
            face.setSource("SettingsScreen.qml", { main: main, settings: settings, stealth: stealth, theme: theme });
        else
            face.setSource("IdleScreen.qml", { main: main, idle: idle, theme: theme });
    }

    Component.onCompleted: showFace()

    Connections {
        target: root.main

        function onFaceChanged() {
            root.showFace();
        }
    }
}
