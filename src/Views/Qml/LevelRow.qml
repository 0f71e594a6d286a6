import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The level of one side: symbol, bar, percentage.
RowLayout {
    id: root

    required property Theme theme
    required property string name
    required property string symbol
    required property bool isHeard
    required property real level
    required property color levelColor
    required property string percentage
    property color heardColor: theme.green

    spacing: 6

    Accessible.role: Accessible.Indicator
    Accessible.name: root.name

    IconLabel {
        objectName: "symbol"
        theme: root.theme
        symbol: root.symbol
        size: 10
        color: root.isHeard ? root.heardColor : Qt.alpha(root.theme.white, 0.3)
    }
    AudioLevelBar {
        Layout.fillWidth: true
        objectName: "bar"
        theme: root.theme
        level: root.level
        fillColor: root.levelColor
    }
    ReadOut {
        Layout.preferredWidth: Math.max(implicitWidth, 34)
        objectName: "percentage"
        theme: root.theme
        text: root.percentage
        size: 10
        isMonospaced: true
        color: Qt.alpha(root.theme.white, 0.4)
        horizontalAlignment: Text.AlignRight
        // It changes many times a second.
        Accessible.ignored: true
    }
}
