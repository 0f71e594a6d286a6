pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// Where the note is written.
Box {
    id: root

    required property MemoryView memory
    required property Theme theme
    property alias label: area.label
    /// The text here is being made the view state's.
    property bool isShowing: false

    radius: 10
    color: theme.cardBackground
    borderWidth: area.activeFocus ? 2 : 1
    borderColor: area.activeFocus ? theme.focusRing : theme.hairline

    function show() {
        if (area.text === memory.memory)
            return;
        isShowing = true;
        // What was cut off goes by itself: the cursor stays where it is.
        if (area.text.startsWith(memory.memory) && memory.memory.length > 0)
            area.remove(memory.memory.length, area.length);
        else
            area.text = memory.memory;
        isShowing = false;
    }

    Component.onCompleted: show()

    Connections {
        target: root.memory

        function onMemoryChanged() {
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

            property string label: ""

            objectName: "memoryText"
            focus: true
            leftPadding: 12
            rightPadding: 14
            topPadding: 10
            bottomPadding: 10
            selectByMouse: true
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap
            font.family: root.theme.textFamily
            font.pixelSize: 13
            color: root.theme.foreground
            selectionColor: root.theme.accent
            selectedTextColor: root.theme.white
            // Line ends that this editor shows otherwise than they stand in the file are no edit.
            onTextChanged: {
                if (!root.isShowing)
                    root.memory.memory = text;
            }

            // The Tab key leaves: nobody indents here.
            Keys.priority: Keys.BeforeItem
            // Escape leaves as well; what is written stays.
            Keys.onEscapePressed: area.focus = false
            Keys.onTabPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
            Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

            Accessible.role: Accessible.EditableText
            Accessible.multiLine: true
            Accessible.name: label

            cursorDelegate: Box {
                width: 1
                color: root.theme.foreground
                visible: area.cursorVisible
            }
        }

        T.ScrollBar.vertical: T.ScrollBar {
            id: bar

            policy: flickable.contentHeight > flickable.height + 0.5 ? T.ScrollBar.AlwaysOn : T.ScrollBar.AlwaysOff
            implicitWidth: 8
            padding: 2
            minimumSize: 0.1
            visible: policy === T.ScrollBar.AlwaysOn
            Accessible.ignored: true

            contentItem: Box {
                radius: 2
                color: Qt.alpha(root.theme.foreground, bar.pressed ? 0.6 : bar.hovered ? 0.45 : 0.25)
            }
        }
    }
}
