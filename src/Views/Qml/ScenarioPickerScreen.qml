pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// Chooses a buyer to practise with, and starts the training.
TabScreen {
    id: root

    required property ScenarioPickerView picker
    required property Theme theme

    // The page scrolls whatever has the keyboard.
    Keys.forwardTo: [area]
    // Not by way of the sidebar.
    Keys.onTabPressed: area.nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    onAppeared: root.picker.appear()

    function chooseScenario(row: int) {
        if (row < 0 || row >= scenarioList.count)
            return;
        scenarioList.positionViewAtIndex(row, ListView.Contain);
        // What loses its stop for the Tab key must not have the keyboard any more.
        const chosen = scenarioList.itemAtIndex(row);
        if (chosen)
            chosen.forceActiveFocus(Qt.TabFocusReason);
        root.picker.selectScenario(row);
    }

    function chooseDisc(row: int) {
        if (row < 0 || row >= chips.count)
            return;
        chips.itemAt(row).forceActiveFocus(Qt.TabFocusReason);
        root.picker.selectDisc(row);
    }

    WaitLine {
        anchors.centerIn: parent
        width: Math.min(implicitWidth, parent.width - 40)
        objectName: "scenarioWait"
        visible: root.picker.isLoading
        theme: root.theme
        text: qsTr("Loading scenarios...")
    }

    ScrollArea {
        id: area

        anchors.fill: parent
        objectName: "trainArea"
        visible: !root.picker.isLoading
        theme: root.theme
        focusMargin: 24
        Accessible.name: qsTr("Train")

        Item {
            width: parent ? parent.width : 0
            height: form.implicitHeight + 32

            ColumnLayout {
                id: form

                anchors.horizontalCenter: parent.horizontalCenter
                y: 16
                width: Math.min(parent.width - 40, 620)
                spacing: 16

                Box {
                    Layout.fillWidth: true
                    objectName: "fetchErrorSection"
                    visible: root.picker.fetchError.length > 0
                    implicitHeight: problem.implicitHeight + 20
                    radius: 10
                    color: Qt.alpha(root.theme.red, 0.12)
                    borderColor: Qt.alpha(root.theme.red, 0.35)

                    ProblemLine {
                        id: problem

                        anchors.left: parent.left
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        anchors.margins: 14
                        theme: root.theme
                        text: root.picker.fetchError
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "scenarioSection"
                    theme: root.theme
                    title: qsTr("Scenario")

                    FoldList {
                        id: scenarioList

                        Layout.fillWidth: true
                        objectName: "scenarioList"
                        visible: count > 0
                        theme: root.theme
                        greatestHeight: 400
                        spacing: 0
                        // The choice that holds has the keyboard, not the list.
                        activeFocusOnTab: false
                        model: root.picker.scenarios
                        Accessible.name: qsTr("Scenario")

                        delegate: ScenarioRow {
                            required property int index
                            required property string name

                            width: scenarioList.width
                            objectName: "scenario" + index
                            theme: root.theme
                            text: name
                            onClicked: root.picker.selectScenario(index)
                            Keys.onUpPressed: root.chooseScenario(index - 1)
                            Keys.onDownPressed: root.chooseScenario(index + 1)
                        }
                    }
                    ReadOut {
                        Layout.fillWidth: true
                        Layout.margins: 14
                        objectName: "noScenarios"
                        visible: root.picker.hasNoScenarios
                        theme: root.theme
                        text: qsTr("This server has no scenarios.")
                        size: 12
                        color: root.theme.secondary
                        wrapMode: Text.Wrap
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "personalitySection"
                    theme: root.theme
                    title: qsTr("Buyer Personality")

                    FlowLayout {
                        Layout.fillWidth: true
                        Layout.margins: 14
                        objectName: "personalities"
                        spacing: 8

                        Repeater {
                            id: chips

                            model: root.picker.personalities

                            PersonalityChip {
                                required property int index
                                required property string label

                                objectName: "personality" + index
                                theme: root.theme
                                text: label
                                Accessible.name: qsTr("Buyer Personality: %1").arg(label)
                                onClicked: root.picker.selectDisc(index)
                                Keys.onLeftPressed: root.chooseDisc(index - 1)
                                Keys.onRightPressed: root.chooseDisc(index + 1)
                            }
                        }
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    objectName: "modeSection"
                    theme: root.theme
                    title: qsTr("Mode")

                    FormSwitch {
                        objectName: "gameSwitch"
                        theme: root.theme
                        text: qsTr("Question Game")
                        symbol: "gamecontroller"
                        caption: root.picker.gameCaption
                        isOn: root.picker.isGameMode
                        onChanged: isOn => root.picker.isGameMode = isOn
                    }
                }

                ProminentButton {
                    Layout.alignment: Qt.AlignHCenter
                    objectName: "startTrain"
                    theme: root.theme
                    text: root.picker.startTitle
                    symbol: root.picker.startSymbol
                    color: root.theme.named[root.picker.startColorName]
                    enabled: root.picker.canStart
                    onClicked: root.picker.startTrain()
                }
            }
        }
    }
}
