import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What went wrong, and the way out of the call.
RowLayout {
    id: root

    required property CoachingOverlayView overlay
    required property Theme theme

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
        Accessible.role: Accessible.AlertMessage

        HoverHandler {
            id: pointer

            enabled: problem.truncated
        }
        Tip {
            parent: problem
            y: -height - 4
            theme: root.theme
            text: problem.text
            visible: pointer.hovered && problem.truncated
        }
    }

    AccessibleAlert {
        target: problem
        text: root.overlay.errorMessage
    }

    PlainButton {
        objectName: "endSession"
        theme: root.theme
        text: qsTr("End Session")
        color: Qt.alpha(root.theme.white, 0.5)
        onClicked: root.overlay.endSession()
    }
}
