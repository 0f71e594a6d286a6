import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A value at the right end of a row, to be selected and copied.
Item {
    id: root

    required property Theme theme
    /// What it is, for screen readers.
    required property string label
    property alias text: words.text

    Layout.fillWidth: true
    implicitWidth: words.implicitWidth + 12
    implicitHeight: Math.max(words.implicitHeight + 8, theme.hitTarget)

    Box {
        anchors.fill: parent
        radius: 6
        color: "transparent"
        borderWidth: 2
        borderColor: root.theme.focusRing
        visible: words.activeFocus
    }
    TextEdit {
        id: words

        anchors.fill: parent
        leftPadding: 6
        rightPadding: 6
        objectName: "selectable"
        readOnly: true
        selectByMouse: true
        selectByKeyboard: true
        activeFocusOnTab: true
        textFormat: TextEdit.PlainText
        wrapMode: TextEdit.Wrap
        horizontalAlignment: TextEdit.AlignRight
        verticalAlignment: TextEdit.AlignVCenter
        font.family: root.theme.textFamily
        font.pixelSize: 13
        color: root.theme.secondary
        selectionColor: root.theme.accent
        selectedTextColor: root.theme.white

        // The Tab key leaves: nothing is written here.
        Keys.priority: Keys.BeforeItem
        Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
        Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

        Accessible.role: Accessible.EditableText
        Accessible.readOnly: true
        Accessible.name: root.label
    }
}
