import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Corvellan.Views

/// Some lines of text that the user writes. The Tab key leaves.
T.TextArea {
    id: root

    required property Theme theme
    /// What it is for, for screen readers.
    required property string label

    Layout.fillWidth: true
    implicitHeight: Math.max(56, contentHeight + topPadding + bottomPadding)
    leftPadding: 9
    rightPadding: 9
    topPadding: 7
    bottomPadding: 7
    hoverEnabled: true
    selectByMouse: true
    wrapMode: TextEdit.Wrap
    textFormat: TextEdit.PlainText
    font.family: theme.textFamily
    font.pixelSize: 13
    color: theme.foreground
    selectionColor: theme.accent
    selectedTextColor: theme.white
    placeholderTextColor: theme.secondary
    activeFocusOnTab: true
    Keys.priority: Keys.BeforeItem
    // Escape leaves as well, and the page stays.
    Keys.onEscapePressed: root.focus = false
    Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    Accessible.role: Accessible.EditableText
    Accessible.multiLine: true
    Accessible.name: root.label
    Accessible.description: root.placeholderText

    ReadOut {
        x: root.leftPadding
        y: root.topPadding
        width: root.width - root.leftPadding - root.rightPadding
        objectName: "placeholder"
        theme: root.theme
        visible: root.text.length === 0 && root.preeditText.length === 0
        text: root.placeholderText
        size: 13
        color: root.placeholderTextColor
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
