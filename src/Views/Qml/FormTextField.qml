pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Corvellan.Views

/// One line of text that the user writes. Escape gives back what stood there when the keyboard came, and leaves a text
/// that nobody has changed.
T.TextField {
    id: root

    required property Theme theme
    /// What it is for, for screen readers.
    required property string label
    /// What Escape gives back. Return settles on what stands there now.
    property string textBefore: ""

    /// Something else is written there, by whatever hand, or is to stand there again: whoever owns the text takes it.
    signal edited(value: string)

    Layout.fillWidth: true
    implicitWidth: 340
    implicitHeight: Math.max(30, contentHeight + topPadding + bottomPadding)
    leftPadding: 9
    rightPadding: 9
    topPadding: 5
    bottomPadding: 5
    hoverEnabled: true
    selectByMouse: true
    font.family: theme.textFamily
    font.pixelSize: 13
    color: theme.foreground
    selectionColor: theme.accent
    selectedTextColor: theme.white
    placeholderTextColor: theme.secondary
    verticalAlignment: TextInput.AlignVCenter
    // Also what a screen reader writes, which is no edit.
    onTextChanged: root.edited(text)
    onActiveFocusChanged: if (activeFocus) textBefore = text
    onAccepted: textBefore = text
    Keys.onEscapePressed: {
        if (text === textBefore)
            focus = false;
        else
            root.edited(textBefore);
    }

    Accessible.role: Accessible.EditableText
    Accessible.name: root.label
    Accessible.description: root.placeholderText

    cursorDelegate: Box {
        width: 1
        color: root.theme.foreground
        visible: root.cursorVisible
    }

    ReadOut {
        x: root.leftPadding
        width: root.width - root.leftPadding - root.rightPadding
        height: root.height
        theme: root.theme
        visible: root.text.length === 0 && root.preeditText.length === 0
        text: root.placeholderText
        size: 13
        color: root.placeholderTextColor
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
        Accessible.ignored: true
    }

    background: Box {
        radius: 6
        color: root.theme.controlBackground
        borderWidth: root.activeFocus ? 2 : 1
        borderColor: root.activeFocus ? root.theme.focusRing
                    : Qt.tint(root.theme.controlBorder, Qt.alpha(root.theme.foreground, root.hovered ? 0.35 : 0))
    }
}
