import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What went wrong, whether the window is hidden, and the way out of the call.
RowLayout {
    id: root

    required property CoachingOverlayView overlay
    required property Theme theme
    /// Null where the host has a stealth control of its own.
    property StealthView stealth: null

    spacing: 8

    ReadOut {
        id: problem

        Layout.fillWidth: true
        objectName: "errorMessage"
        theme: root.theme
        text: root.overlay.errorMessage
        size: 10
        color: Qt.alpha(root.theme.red, 0.7)
        wrapMode: Text.Wrap
        elide: Text.ElideRight
        maximumLineCount: 2
        Accessible.role: Accessible.Notification

        HoverHandler {
            id: pointer

            enabled: problem.truncated
        }
        Tip {
            parent: problem
            isAbove: true
            theme: root.theme
            text: problem.text
            visible: pointer.hovered && problem.truncated
        }
    }

    AccessibleAlert {
        objectName: "problemAlert"
        target: problem
        text: root.overlay.errorMessage
    }

    Loader {
        id: stealthPlace

        visible: status === Loader.Ready
    }

    Component.onCompleted: {
        if (stealth)
            stealthPlace.setSource("StealthControl.qml", { stealth: stealth, theme: theme, hasTipsAbove: true });
    }

    PlainButton {
        objectName: "endSession"
        theme: root.theme
        text: qsTr("End Session")
        color: Qt.alpha(root.theme.white, 0.5)
        onClicked: root.overlay.endSession()
    }
}
