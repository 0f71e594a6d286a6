pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Corvellan.Views

/// The field for a company's name. Escape and the button in it empty it; Return and Down lead to what was found.
Box {
    id: root

    required property HomeView home
    required property Theme theme
    readonly property Item field: input

    signal resultsWanted

    implicitHeight: 40
    radius: 10
    color: root.theme.cardBackground
    borderWidth: input.activeFocus ? 2 : 1
    borderColor: input.activeFocus ? Qt.alpha(root.theme.cyan, 0.5) : root.theme.hairline

    Binding {
        target: root.home
        property: "isSearchFocused"
        value: input.activeFocus
    }

    function clear() {
        root.home.clearSearch();
        input.forceActiveFocus(Qt.OtherFocusReason);
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 4
        spacing: 8

        IconLabel {
            objectName: "searchIcon"
            theme: root.theme
            symbol: "magnifyingglass"
            size: 14
            color: root.theme.named[root.home.searchIconColor]
        }
        T.TextField {
            id: input

            Layout.fillWidth: true
            Layout.fillHeight: true
            objectName: "search"
            focus: true
            selectByMouse: true
            font.family: root.theme.textFamily
            font.pixelSize: 14
            color: root.theme.foreground
            selectionColor: root.theme.accent
            selectedTextColor: root.theme.white
            placeholderText: qsTr("Search company...")
            placeholderTextColor: root.theme.secondary
            verticalAlignment: TextInput.AlignVCenter
            inputMethodHints: Qt.ImhNoPredictiveText
            text: root.home.quickStartCompany
            // Also what a screen reader writes, which is no edit.
            onTextChanged: root.home.quickStartCompany = text
            onAccepted: root.resultsWanted()
            Keys.onDownPressed: root.resultsWanted()
            Keys.onEscapePressed: event => {
                event.accepted = root.home.canClearSearch;
                if (event.accepted)
                    root.clear();
            }

            Accessible.role: Accessible.EditableText
            Accessible.name: qsTr("Search company")
            Accessible.searchEdit: true
            Accessible.description: root.home.isHomeSearching ? qsTr("Searching") : ""

            cursorDelegate: Box {
                width: 1
                color: root.theme.foreground
                visible: input.cursorVisible
            }

            ReadOut {
                anchors.fill: parent
                theme: root.theme
                visible: input.text.length === 0 && input.preeditText.length === 0
                text: input.placeholderText
                size: 14
                color: input.placeholderTextColor
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        Spinner {
            objectName: "searchSpinner"
            theme: root.theme
            visible: root.home.isHomeSearching
        }
        IconButton {
            objectName: "clearSearch"
            theme: root.theme
            visible: root.home.canClearSearch
            symbol: "xmark.circle.fill"
            text: qsTr("Clear search")
            tip: qsTr("Clear search (Esc)")
            implicitWidth: 32
            implicitHeight: 32
            onClicked: root.clear()
        }
    }
}
