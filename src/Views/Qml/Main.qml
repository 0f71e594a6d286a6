import QtQuick
import Corvellan.Views

/// The content of the program's one window: its surface, and the face that is on.
Item {
    id: root

    required property ViewStates views
    readonly property string shownFace: views.dashboard.face

    Box {
        anchors.fill: parent
        color: root.views.dashboard.surfaceColor
        radius: root.views.dashboard.surfaceRadius
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
        stealth: root.views.stealth
    }

    function showFace() {
        const screens = { session: "SessionScreen.qml", onboarding: "OnboardingScreen.qml" };
        face.setSource(screens[shownFace] ?? "DashboardScreen.qml", { views: views });
    }

    Component.onCompleted: showFace()
    onShownFaceChanged: showFace()
}
