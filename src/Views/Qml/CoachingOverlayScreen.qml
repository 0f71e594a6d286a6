import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The read-out of a running call: tip, state of the call, footer. The tip and the footer stay in view;
/// what is too tall between them scrolls.
FocusScope {
    id: root

    required property CoachingOverlayView overlay
    required property Theme theme
    /// Null where the host has a stealth control of its own.
    property StealthView stealth: null
    readonly property int margin: 12

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ScrollArea {
            Layout.fillWidth: true
            Layout.preferredHeight: contentHeight
            // A tip of ten words is far below this; a rambling one must leave room for the rest.
            Layout.maximumHeight: Math.round(root.height * 0.55)
            objectName: "whisperBlock"
            theme: root.theme
            hasFade: true
            Accessible.name: qsTr("Tip")

            Item {
                width: parent ? parent.width : 0
                height: whisper.implicitHeight + 12

                CoachingWhisper {
                    id: whisper

                    x: root.margin
                    y: 6
                    width: parent.width - 2 * root.margin
                    overlay: root.overlay
                    theme: root.theme
                }
            }
        }

        Divider {
            Layout.fillWidth: true
            theme: root.theme
        }

        ScrollArea {
            id: stateBlock

            Layout.fillWidth: true
            Layout.fillHeight: true
            objectName: "stateBlock"
            theme: root.theme
            hasFade: true
            Accessible.name: qsTr("State of the call")

            Item {
                width: parent ? parent.width : 0
                height: state.implicitHeight + 9

                ColumnLayout {
                    id: state

                    x: root.margin
                    y: 6
                    width: parent.width - 2 * root.margin
                    spacing: 4

                    OverlayHeader {
                        Layout.fillWidth: true
                        overlay: root.overlay
                        theme: root.theme
                    }
                    ReadOut {
                        Layout.fillWidth: true
                        objectName: "phase"
                        theme: root.theme
                        visible: text.length > 0
                        text: root.overlay.phaseText
                        size: 9 * root.overlay.fs
                        isMonospaced: true
                        color: Qt.alpha(root.theme.white, 0.55)
                        elide: Text.ElideRight
                    }
                    MeddicChecklist {
                        Layout.fillWidth: true
                        objectName: "meddicChecklist"
                        visible: root.overlay.showsMeddic
                        overlay: root.overlay
                        theme: root.theme
                    }
                    BuyerProfile {
                        Layout.fillWidth: true
                        overlay: root.overlay
                        theme: root.theme
                    }
                    CompanyRow {
                        id: company

                        Layout.fillWidth: true
                        visible: root.overlay.hasCompany
                        overlay: root.overlay
                        theme: root.theme

                        Connections {
                            target: company.button

                            function onActiveFocusChanged() {
                                if (company.button.activeFocus)
                                    stateBlock.reveal(company.button);
                            }
                        }
                    }
                    RowLayout {
                        Layout.fillWidth: true
                        objectName: "speakingNotice"
                        visible: root.overlay.isSpeaking
                        spacing: 5

                        IconLabel {
                            theme: root.theme
                            symbol: "speaker.wave.2.fill"
                            size: 9
                            color: root.theme.orange
                        }
                        ReadOut {
                            Layout.fillWidth: true
                            theme: root.theme
                            text: qsTr("Customer speaking — SPACE to skip")
                            size: 9
                            color: Qt.alpha(root.theme.orange, 0.7)
                        }
                    }
                }
            }
        }

        Divider {
            Layout.fillWidth: true
            theme: root.theme
        }

        OverlayFooter {
            Layout.fillWidth: true
            Layout.leftMargin: root.margin
            Layout.rightMargin: root.margin - 8
            Layout.topMargin: 1
            Layout.bottomMargin: 1
            overlay: root.overlay
            theme: root.theme
            stealth: root.stealth
        }
    }
}
