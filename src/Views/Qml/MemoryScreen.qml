import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The user's note on themselves, which goes with every session.
TabScreen {
    id: root

    required property MemoryView memory
    required property Theme theme

    // The page scrolls whatever has the keyboard.
    Keys.forwardTo: [area]
    onAppeared: root.memory.appear()

    ScrollArea {
        id: area

        anchors.fill: parent
        objectName: "memoryArea"
        theme: root.theme
        focusMargin: 16
        Accessible.name: qsTr("Memory")

        Item {
            width: parent ? parent.width : 0
            // The editor takes what the window has to give.
            height: Math.max(form.implicitHeight + 40, area.height)

            ColumnLayout {
                id: form

                anchors.horizontalCenter: parent.horizontalCenter
                y: 20
                width: Math.min(parent.width - 40, 620)
                height: parent.height - 40
                spacing: 20

                ColumnLayout {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    spacing: 6

                    ReadOut {
                        Layout.fillWidth: true
                        Layout.leftMargin: 14
                        Layout.rightMargin: 14
                        objectName: "memoryTitle"
                        theme: root.theme
                        text: qsTr("Your Context")
                        size: 12
                        font.weight: Font.DemiBold
                        color: root.theme.secondary
                        elide: Text.ElideRight
                        Accessible.role: Accessible.Heading
                    }
                    MemoryEditor {
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        Layout.minimumHeight: 200
                        Layout.preferredHeight: 200
                        objectName: "memoryEditor"
                        memory: root.memory
                        theme: root.theme
                        label: qsTr("Your Context")
                    }
                    ProblemText {
                        Layout.fillWidth: true
                        Layout.leftMargin: 14
                        Layout.rightMargin: 14
                        objectName: "memoryNotice"
                        theme: root.theme
                        colorName: "orange"
                        text: root.memory.notice
                    }
                    RowLayout {
                        Layout.fillWidth: true
                        Layout.leftMargin: 14
                        Layout.rightMargin: 14
                        spacing: 14

                        ReadOut {
                            Layout.fillWidth: true
                            Layout.alignment: Qt.AlignTop
                            objectName: "memoryExplanation"
                            theme: root.theme
                            text: qsTr("Personal notes sent with every coaching session. E.g., your territory, product focus, selling style.")
                            size: 11
                            lineHeight: 1.1
                            color: root.theme.secondary
                            wrapMode: Text.Wrap
                        }
                        ReadOut {
                            Layout.alignment: Qt.AlignTop
                            objectName: "memoryCounter"
                            theme: root.theme
                            text: root.memory.counterText
                            size: 11
                            color: root.theme.named[root.memory.counterColor]
                            Accessible.name: qsTr("%1 characters").arg(text.replace("/", qsTr(" of ")))
                        }
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    theme: root.theme
                    title: ""

                    FormRow {
                        theme: root.theme
                        contentShare: 1

                        ProminentButton {
                            implicitHeight: 34
                            leftPadding: 16
                            rightPadding: 18
                            objectName: "saveMemory"
                            theme: root.theme
                            text: qsTr("Save")
                            symbol: "checkmark.circle"
                            color: root.theme.accent
                            enabled: !root.memory.saved
                            onClicked: root.memory.pressSave()
                        }
                        ReadOut {
                            id: badge

                            Layout.leftMargin: 6
                            objectName: "memorySaved"
                            theme: root.theme
                            visible: root.memory.saved
                            text: qsTr("Saved")
                            size: 13
                            color: root.theme.green
                            Accessible.role: Accessible.Notification

                            AccessibleAlert {
                                target: badge
                                text: root.memory.saved ? badge.text : ""
                            }
                        }
                        Item {
                            Layout.fillWidth: true
                        }
                    }
                }

                FormSection {
                    Layout.fillWidth: true
                    theme: root.theme
                    title: ""

                    FormRow {
                        theme: root.theme
                        label: qsTr("File")

                        SelectableText {
                            objectName: "memoryFile"
                            theme: root.theme
                            label: qsTr("File")
                            text: root.memory.fileText
                        }
                    }
                }
            }
        }
    }
}
