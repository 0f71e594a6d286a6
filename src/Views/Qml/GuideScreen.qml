pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The product's own account of itself, to be read.
TabScreen {
    id: root

    required property GuideView guide
    required property StealthView stealth
    required property Theme theme

    Keys.onPressed: event => event.accepted = area.scrollByKey(event.key)
    Keys.onTabPressed: area.forceActiveFocus(Qt.TabFocusReason)

    ScrollArea {
        id: area

        anchors.fill: parent
        objectName: "guideArea"
        theme: root.theme
        Accessible.name: qsTr("Guide")

        Item {
            width: parent ? parent.width : 0
            height: page.implicitHeight + 48

            ColumnLayout {
                id: page

                anchors.horizontalCenter: parent.horizontalCenter
                y: 22
                width: Math.min(parent.width - 40, 620)
                spacing: 26

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 3

                    ReadOut {
                        Layout.fillWidth: true
                        objectName: "guideTitle"
                        theme: root.theme
                        text: root.guide.title
                        size: 22
                        font.weight: Font.Bold
                        wrapMode: Text.Wrap
                        Accessible.role: Accessible.Heading
                    }
                    ReadOut {
                        Layout.fillWidth: true
                        objectName: "guideSubtitle"
                        theme: root.theme
                        text: root.guide.subtitle
                        size: 14
                        color: root.theme.secondary
                        wrapMode: Text.Wrap
                    }
                }

                Repeater {
                    model: root.guide.sections

                    ColumnLayout {
                        id: section

                        required property var modelData
                        required property int index

                        Layout.fillWidth: true
                        objectName: "guideSection" + index
                        spacing: 10

                        RowLayout {
                            Layout.fillWidth: true
                            spacing: 9

                            IconLabel {
                                theme: root.theme
                                symbol: section.modelData.symbol
                                size: 16
                                color: root.theme.accent
                            }
                            ReadOut {
                                Layout.fillWidth: true
                                theme: root.theme
                                text: section.modelData.title
                                size: 16
                                font.weight: Font.DemiBold
                                wrapMode: Text.Wrap
                                Accessible.role: Accessible.Heading
                            }
                        }
                        ReadOut {
                            Layout.fillWidth: true
                            theme: root.theme
                            text: section.modelData.text
                            size: 13
                            lineHeight: 1.2
                            wrapMode: Text.Wrap
                        }
                        ExplainedRows {
                            theme: root.theme
                            rows: section.modelData.rows
                        }
                        ExplainedNote {
                            readonly property var note: section.modelData.note

                            objectName: "guideNote" + section.index
                            theme: root.theme
                            visible: text.length > 0
                            symbol: note.symbol ?? ""
                            colorName: note.colorName ?? ""
                            strength: note.opacity ?? 0
                            text: note.text ?? ""
                        }
                    }
                }

                // The words above are the product's; what holds on this desktop is another matter.
                ExplainedNote {
                    Layout.topMargin: -16
                    objectName: "guideHiding"
                    theme: root.theme
                    symbol: root.stealth.isAvailable ? "info.circle" : "exclamationmark.triangle.fill"
                    colorName: root.stealth.isAvailable ? "cyan" : "orange"
                    strength: root.stealth.isAvailable ? 0.08 : 0.1
                    text: root.stealth.statusText
                }
            }
        }
    }
}
