pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// The notes for the next call, over several lines.
Box {
    id: root

    required property CallPrep prep
    required property Theme theme

    implicitHeight: Math.max(72, Math.min(area.contentHeight + 16, 180))
    radius: 8
    color: root.theme.controlBackground
    borderWidth: area.activeFocus ? 2 : 1
    borderColor: area.activeFocus ? root.theme.focusRing : root.theme.controlBorder

    function show() {
        if (area.text === root.prep.callPrepNotes)
            return;
        const at = area.cursorPosition;
        area.text = root.prep.callPrepNotes;
        area.cursorPosition = Math.min(at, area.length);
    }

    Component.onCompleted: show()

    Connections {
        target: root.prep

        function onCallPrepNotesChanged() {
            root.show();
        }
    }

    Flickable {
        id: flickable

        anchors.fill: parent
        anchors.margins: 2
        contentWidth: width
        clip: true
        boundsBehavior: Flickable.StopAtBounds

        T.TextArea.flickable: T.TextArea {
            id: area

            objectName: "callPrepNotes"
            width: flickable.width
            leftPadding: 8
            rightPadding: 8
            topPadding: 6
            bottomPadding: 6
            selectByMouse: true
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap
            font.family: root.theme.textFamily
            font.pixelSize: 13
            color: root.theme.foreground
            selectionColor: root.theme.accent
            selectedTextColor: root.theme.white
            placeholderText: qsTr("Follow-up items, prep notes...")
            onTextChanged: root.prep.callPrepNotes = text

            // The Tab key leaves: nobody indents here.
            Keys.priority: Keys.BeforeItem
            // Escape leaves as well, and what lies round it keeps what it holds.
            Keys.onEscapePressed: area.focus = false
            Keys.onTabPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
            Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

            Accessible.role: Accessible.EditableText
            Accessible.multiLine: true
            Accessible.name: qsTr("Call notes")
            Accessible.description: placeholderText

            cursorDelegate: Box {
                width: 1
                color: root.theme.foreground
                visible: area.cursorVisible
            }

            ReadOut {
                x: area.leftPadding
                y: area.topPadding
                width: area.width - area.leftPadding - area.rightPadding
                theme: root.theme
                visible: area.length === 0 && area.preeditText.length === 0
                text: area.placeholderText
                size: 13
                color: root.theme.secondary
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }
}
