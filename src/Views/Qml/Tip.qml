import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// What a small thing means, or the whole of a text that is cut off where it stands.
T.ToolTip {
    id: root

    required property Theme theme
    property bool isAbove: false
    property real widest: 360

    x: 0
    y: isAbove ? -height - 4 : parent ? parent.height + 4 : 0
    margins: 6
    padding: 6
    leftPadding: 8
    rightPadding: 8
    delay: 400
    implicitWidth: Math.min(implicitContentWidth + leftPadding + rightPadding, widest)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

    contentItem: ReadOut {
        theme: root.theme
        text: root.text
        size: 11
        wrapMode: Text.Wrap
    }

    background: Box {
        color: root.theme.popupBackground
        borderColor: Qt.alpha(root.theme.foreground, 0.15)
        radius: 5
    }
}
