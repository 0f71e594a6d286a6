// Unbound: a view of Qt 6.4 makes no header of a bound component. What follows from that is on purpose.
// qmllint disable unqualified
import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The stored sessions, newest first, and the summary of the one that is open.
TabScreen {
    id: root

    required property SessionHistoryView history
    required property Theme theme
    readonly property bool isListShown: history.detail === null

    onAppeared: {
        history.appear();
        takeKeyboard();
    }
    onDisappeared: history.disappear()

    /// To where the user goes on: the summary, the row that was open, or the list. Not away from the sidebar.
    function takeKeyboard() {
        if (!isListShown) {
            summary.focus = true;
        } else if (history.state !== "list") {
            empty.focus = true;
        } else {
            const row = history.lastOpenRow();
            if (row >= 0)
                list.currentIndex = row;
            list.focus = true;
        }
    }

    Connections {
        target: root.history

        function onStateChanged() {
            if (root.isListShown && !list.activeFocus)
                root.takeKeyboard();
        }

        // Which stand above the first row.
        function onFiltersChanged() {
            list.currentIndex = -1;
            list.positionViewAtBeginning();
        }

        function onDetailChanged() {
            if (root.history.detail)
                summary.setSource("SessionSummaryScreen.qml", { detail: root.history.detail, theme: root.theme });
            else
                summary.setSource("");
        }
    }

    ColumnLayout {
        anchors.fill: parent
        visible: root.isListShown
        spacing: 0
        onVisibleChanged: if (visible) root.takeKeyboard()

        ScreenTitle {
            Layout.fillWidth: true
            theme: root.theme
            text: qsTr("History")
        }
        Divider {
            Layout.fillWidth: true
            theme: root.theme
        }
        ReadOut {
            Layout.fillWidth: true
            Layout.margins: 10
            Layout.leftMargin: 20
            Layout.rightMargin: 20
            objectName: "openProblem"
            theme: root.theme
            visible: text.length > 0
            text: root.history.openProblem
            size: 12
            color: root.theme.errorText
            wrapMode: Text.Wrap
        }
        HistoryEmpty {
            id: empty

            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: root.history.state !== "list"
            history: root.history
            theme: root.theme
        }
        HistoryList {
            id: list

            readonly property real column: Math.min(width - 40, 620)
            readonly property real margin: Math.round((width - column) / 2)

            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: root.history.state === "list"
            objectName: "sessions"
            theme: root.theme
            model: root.history.rows
            spacing: 4
            currentIndex: -1
            // Then a row has the keyboard, and is a stop itself.
            activeFocusOnTab: count > 0 && currentIndex < 0 || Window.activeFocusItem === list
            keyNavigationEnabled: true
            cacheBuffer: 200
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Sessions")

            onActiveFocusChanged: {
                if (activeFocus && currentIndex < 0 && count > 0)
                    currentIndex = 0;
            }
            Keys.onReturnPressed: event => root.openCurrent(event)
            Keys.onEnterPressed: event => root.openCurrent(event)
            Keys.onSpacePressed: event => root.openCurrent(event)
            Keys.onPressed: event => {
                const page = Math.max(1, Math.floor(height / 60));
                const step = event.key === Qt.Key_PageDown ? page : event.key === Qt.Key_PageUp ? -page
                           : event.key === Qt.Key_End ? count : event.key === Qt.Key_Home ? -count : 0;
                event.accepted = step !== 0;
                if (event.accepted)
                    currentIndex = Math.max(0, Math.min(count - 1, currentIndex + step));
                // Above the first row stand the filters.
                if (event.accepted && currentIndex === 0)
                    scrollBy(-contentHeight);
            }

            header: Item {
                width: list.width
                height: stats.implicitHeight + 24

                HistoryStats {
                    id: stats

                    x: list.margin
                    y: 16
                    width: list.column
                    history: root.history
                    theme: root.theme
                }
            }
            footer: Item {
                width: list.width
                height: 16
            }
            section.property: "section"
            section.delegate: Item {
                required property string section

                width: list.width
                height: day.implicitHeight + 16

                ReadOut {
                    id: day

                    x: list.margin + 14
                    y: 10
                    width: list.column - 14
                    objectName: "day"
                    theme: root.theme
                    text: parent.section
                    size: 12
                    font.weight: Font.DemiBold
                    color: root.theme.secondary
                    elide: Text.ElideRight
                    Accessible.role: Accessible.Heading
                }
            }
            delegate: HistoryRow {
                x: list.margin
                width: list.column
                theme: root.theme
                isCurrent: list.hasRowFocus && ListView.isCurrentItem
                activeFocusOnTab: ListView.isCurrentItem || activeFocus
                onClicked: {
                    list.currentIndex = index;
                    root.history.open(index);
                }
            }
        }
    }

    Loader {
        id: summary

        anchors.fill: parent
        objectName: "summary"
        visible: !root.isListShown
        onLoaded: root.takeKeyboard()
    }

    function openCurrent(event: var) {
        if (!event.isAutoRepeat && list.hasRowFocus)
            root.history.open(list.currentIndex);
    }
}
