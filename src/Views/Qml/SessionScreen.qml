import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A running session in one of its three layouts: overlay and transcript, overlay alone, one line.
FocusScope {
    id: root

    required property ViewStates views
    readonly property string layoutName: views.live.sessionTab
    readonly property bool isMini: layoutName === "mini"

    // The control that changes the layout keeps the keyboard, wherever it stands in the next one.
    onIsMiniChanged: {
        if (isMini && header.layoutButton.activeFocus)
            mini.layoutButton.forceActiveFocus(Qt.TabFocusReason);
        else if (!isMini && mini.layoutButton.activeFocus)
            header.layoutButton.forceActiveFocus(Qt.TabFocusReason);
    }

    Shortcut {
        sequence: "Ctrl+L"
        onActivated: root.views.live.cycleSessionTab()
    }

    MiniSessionBar {
        id: mini

        width: parent.width
        height: Math.min(implicitHeight, parent.height)
        anchors.verticalCenter: parent.verticalCenter
        objectName: "miniSessionBar"
        visible: root.isMini
        views: root.views
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        visible: !root.isMini

        SessionHeader {
            id: header

            Layout.fillWidth: true
            objectName: "sessionHeader"
            views: root.views
        }
        Box {
            Layout.fillWidth: true
            implicitHeight: 1
            color: Qt.alpha(root.views.callTheme.white, 0.1)
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            CoachingOverlayScreen {
                id: overlay

                width: transcript.isWanted ? Math.floor((parent.width - 1) / 2) : parent.width
                height: parent.height
                objectName: "overlay"
                overlay: root.views.overlay
                theme: root.views.callTheme
            }
            Box {
                x: overlay.width
                width: 1
                height: parent.height
                visible: transcript.isWanted
                color: Qt.alpha(root.views.callTheme.white, 0.1)
            }
            Loader {
                id: transcript

                x: overlay.width + 1
                width: parent.width - x
                height: parent.height
                readonly property bool isWanted: root.layoutName === "full"

                function follow() {
                    if (isWanted)
                        setSource("TranscriptPanel.qml", { live: root.views.live, overlay: root.views.overlay,
                                                           theme: root.views.callTheme });
                    else
                        source = "";
                }

                Component.onCompleted: follow()
                onIsWantedChanged: follow()
            }
        }
    }
}
