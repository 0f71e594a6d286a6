import QtQuick
import Corvellan.Views

/// Tells below a note that it is not all there. Takes no room otherwise.
ReadOut {
    id: root

    required property bool isCut
    readonly property real takenHeight: isCut ? implicitHeight : 0

    objectName: "cutNotice"
    visible: isCut
    height: takenHeight
    text: qsTr("The note goes on: it is too long to be shown whole. \"Copy\" copies all of it.")
    size: 11
    color: "#f0a050"
    wrapMode: Text.Wrap
    leftPadding: 16
    rightPadding: 16
    topPadding: 6
    bottomPadding: 8
}
