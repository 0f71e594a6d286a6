pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Corvellan.Views

/// The levels of both sides, how the session stands, and everything that was said.
FocusScope {
    id: root

    required property LiveSessionView live
    required property CoachingOverlayView overlay
    required property Theme theme
    readonly property int margin: 10

    objectName: "transcriptPanel"

    ColumnLayout {
        anchors.fill: parent
        anchors.topMargin: 8
        anchors.bottomMargin: 4
        spacing: 4

        LevelRow {
            Layout.fillWidth: true
            Layout.leftMargin: root.margin
            Layout.rightMargin: root.margin
            objectName: "micRow"
            theme: root.theme
            name: qsTr("Microphone level")
            symbol: "mic.fill"
            isHeard: root.live.isMicHeard
            level: root.live.audioLevel
            levelColor: root.live.micLevelColor
            percentage: root.live.micLevelText
        }
        LevelRow {
            Layout.fillWidth: true
            Layout.leftMargin: root.margin
            Layout.rightMargin: root.margin
            objectName: "systemRow"
            visible: root.live.showsSystem
            theme: root.theme
            name: qsTr("System audio level")
            symbol: "speaker.wave.2.fill"
            heardColor: root.theme.orange
            isHeard: root.live.isSystemHeard
            level: root.live.systemAudioLevel
            levelColor: root.live.systemLevelColor
            percentage: root.live.systemLevelText
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: root.margin
            Layout.rightMargin: root.margin - 6
            spacing: 6

            Box {
                objectName: "statusDot"
                implicitWidth: 6
                implicitHeight: 6
                radius: 3
                color: root.live.statusColor
            }
            ReadOut {
                Layout.fillWidth: true
                objectName: "status"
                theme: root.theme
                text: root.live.statusText
                size: 10
                color: Qt.alpha(root.theme.white, 0.5)
                elide: Text.ElideRight
                Accessible.name: qsTr("Status: %1").arg(text)
            }
            ReadOut {
                objectName: "skipHint"
                theme: root.theme
                visible: root.live.isTtsPlaying
                text: qsTr("SPACE to skip")
                size: 9
                isMonospaced: true
                font.weight: Font.Medium
                color: Qt.alpha(root.theme.orange, 0.7)
            }
            PanelButton {
                objectName: "muteButton"
                theme: root.theme
                symbol: root.live.isTtsMuted ? "speaker.slash.fill" : "speaker.wave.2.fill"
                size: 11
                color: root.live.isTtsMuted ? Qt.alpha(root.theme.red, 0.6) : Qt.alpha(root.theme.white, 0.3)
                text: qsTr("Mute the buyer's voice")
                tip: root.live.isTtsMuted ? qsTr("Let the buyer's voice be heard") : text
                Accessible.checkable: true
                Accessible.checked: root.live.isTtsMuted
                onClicked: root.live.toggleTtsMute()
            }
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: root.margin
            Layout.rightMargin: root.margin
            objectName: "waiting"
            visible: root.live.isWaiting
            spacing: 6

            Spinner {
                theme: root.theme
                size: 10
                color: root.theme.orange
            }
            ReadOut {
                Layout.fillWidth: true
                theme: root.theme
                text: qsTr("Waiting for response...")
                size: 10
                color: Qt.alpha(root.theme.orange, 0.6)
            }
        }
        Box {
            Layout.fillWidth: true
            implicitHeight: 1
            color: Qt.alpha(root.theme.white, 0.1)
        }
        Box {
            Layout.fillWidth: true
            Layout.leftMargin: root.margin
            Layout.rightMargin: root.margin
            objectName: "errorBox"
            visible: root.overlay.errorMessage.length > 0
            implicitHeight: Math.min(problem.implicitHeight + 8, root.height / 3)
            radius: 4
            clip: true
            color: Qt.alpha(root.theme.red, 0.1)

            ReadOut {
                id: problem

                x: 6
                y: 4
                width: parent.width - 12
                height: parent.height - 8
                objectName: "panelError"
                theme: root.theme
                text: root.overlay.errorMessage
                size: 10
                color: root.theme.red
                wrapMode: Text.Wrap
                elide: Text.ElideRight
                Accessible.role: Accessible.AlertMessage
            }
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ListView {
                id: list

                anchors.fill: parent
                anchors.leftMargin: root.margin
                objectName: "transcript"
                clip: true
                activeFocusOnTab: contentHeight > height
                boundsBehavior: Flickable.StopAtBounds
                // Dragging moves the window; the wheel, the bar and the keys scroll.
                interactive: false
                model: root.live.transcriptLines
                cacheBuffer: 200
                rightMargin: root.margin
                bottomMargin: streaming.visible ? streaming.implicitHeight : 0
                // Where the last page begins.
                readonly property real endY: Math.max(originY, originY + contentHeight + bottomMargin - height)

                Accessible.role: Accessible.List
                Accessible.name: qsTr("Transcript")

                delegate: TranscriptRow {
                    required property int source
                    required property string label
                    required property bool startsTurn

                    width: list.width - root.margin
                    theme: root.theme
                    tag: label
                    tagColor: root.live.tagColor(source)
                    isCoach: source === 2
                    hasLine: startsTurn
                    letterScale: root.live.fontScale
                }

                // Not a footer: those are made outside of the scope that this file's components are bound to.
                TranscriptRow {
                    id: streaming

                    parent: list.contentItem
                    y: list.originY + list.contentHeight
                    width: list.width - root.margin
                    objectName: "streaming"
                    visible: text.length > 0
                    theme: root.theme
                    tag: qsTr("THEM")
                    tagColor: root.theme.orange
                    text: root.live.counterpartStreamingText
                    tagWidth: 36 * root.live.fontScale
                    textSize: 11
                    textColor: Qt.alpha(root.theme.orange, 0.6)
                }

                T.ScrollBar.vertical: T.ScrollBar {
                    id: bar

                    policy: list.contentHeight > list.height ? T.ScrollBar.AlwaysOn : T.ScrollBar.AlwaysOff
                    implicitWidth: 8
                    padding: 2
                    minimumSize: 0.1
                    visible: list.contentHeight > list.height
                    Accessible.ignored: true

                    contentItem: Box {
                        radius: 2
                        color: Qt.alpha(root.theme.white, bar.pressed ? 0.6 : bar.hovered ? 0.45 : 0.25)
                    }
                }

                NumberAnimation {
                    id: glide

                    objectName: "glide"
                    target: list
                    property: "contentY"
                    easing.type: Easing.OutQuad
                    // Heights of rows that were out of sight are known only now.
                    onFinished: list.scrollBy(list.contentHeight)
                }

                function scrollBy(distance: real) {
                    glide.stop();
                    list.contentY = Math.max(list.originY, Math.min(list.contentY + distance, list.endY));
                }

                /// Rolls to the last line in so many milliseconds, and from far away the last page of the way only.
                function showEnd(duration: int) {
                    glide.stop();
                    const from = list.contentY;
                    list.forceLayout();
                    list.positionViewAtEnd();
                    const to = list.endY;
                    if (Math.abs(to - from) < 1)
                        return;
                    glide.from = Math.max(from, to - list.height);
                    glide.to = to;
                    glide.duration = duration;
                    glide.restart();
                }

                onCountChanged: {
                    if (count > 0)
                        rolling.begin(200);
                }

                // Once for all lines that come together, and after they have their places.
                Timer {
                    id: rolling

                    property int duration

                    interval: 0
                    onTriggered: list.showEnd(duration)

                    function begin(time: int) {
                        duration = time;
                        restart();
                    }
                }

                Connections {
                    target: root.live

                    function onStreamingChanged() {
                        if (root.live.counterpartStreamingText.length > 0)
                            rolling.begin(100);
                    }
                }

                Keys.onUpPressed: scrollBy(-24)
                Keys.onDownPressed: scrollBy(24)
                Keys.onPressed: event => {
                    const step = event.key === Qt.Key_PageDown ? height : event.key === Qt.Key_PageUp ? -height
                               : event.key === Qt.Key_End ? contentHeight : event.key === Qt.Key_Home ? -contentHeight : 0;
                    if (step === 0)
                        return;
                    scrollBy(step);
                    event.accepted = true;
                }
            }

            WheelHandler {
                acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
                onWheel: event => list.scrollBy(event.pixelDelta.y !== 0 ? -event.pixelDelta.y : -event.angleDelta.y / 3)
            }

            Box {
                anchors.fill: parent
                radius: 5
                color: "transparent"
                borderWidth: 2
                borderColor: root.theme.focusRing
                visible: list.activeFocus
            }

            ReadOut {
                anchors.centerIn: parent
                width: Math.min(implicitWidth, parent.width - 20)
                objectName: "transcriptHint"
                visible: list.count === 0 && root.live.counterpartStreamingText.length === 0
                theme: root.theme
                text: qsTr("Speak into mic to start...")
                size: 11
                color: Qt.alpha(root.theme.white, 0.2)
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }
        }
    }
}
