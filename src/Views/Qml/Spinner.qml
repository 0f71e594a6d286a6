pragma ComponentBehavior: Bound

import QtQuick
import Corvellan.Views

/// Turns while something is on its way. What that is stands beside it in words.
Item {
    id: root

    required property Theme theme
    property real size: 12
    property color color: theme.secondary
    readonly property int dots: 8
    readonly property alias isTurning: turn.running

    implicitWidth: size * 1.3
    implicitHeight: size * 1.3
    Accessible.ignored: true

    Repeater {
        model: root.dots

        Box {
            required property int index
            readonly property real angle: 2 * Math.PI * index / root.dots

            width: root.width / 6
            height: width
            radius: width / 2
            x: root.width / 2 * (1 + 0.8 * Math.sin(angle)) - width / 2
            y: root.height / 2 * (1 - 0.8 * Math.cos(angle)) - height / 2
            color: Qt.alpha(root.color, root.color.a * (index + 1) / root.dots)
        }
    }

    RotationAnimator on rotation {
        id: turn

        // On a screen that nobody has opened it is disabled, and would keep the window drawing.
        running: root.visible && root.enabled
        from: 0
        to: 360
        duration: 900
        loops: Animation.Infinite
    }
}
