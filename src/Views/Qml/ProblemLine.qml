import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What has gone wrong, with a warning's symbol before it. Takes no room while its text is empty.
RowLayout {
    id: root

    required property Theme theme
    required property string text

    visible: root.text.length > 0
    spacing: 8

    IconLabel {
        Layout.alignment: Qt.AlignTop
        theme: root.theme
        symbol: "exclamationmark.triangle.fill"
        size: 13
        color: words.color
    }
    ProblemText {
        id: words

        Layout.fillWidth: true
        objectName: "problemText"
        theme: root.theme
        text: root.text
        size: 13
    }
}
