import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// A list inside a form: as high as its rows, though not without bound; beyond that it scrolls, and makes only the
/// rows that show.
ListView {
    id: root

    required property Theme theme
    property real greatestHeight: 320
    readonly property bool isOverflowing: contentHeight > height + 0.5
    /// The list itself, not a row of it.
    readonly property bool hasKeyboard: Window.activeFocusItem === root

    // A list of no height makes no row to have a height.
    implicitHeight: count === 0 ? 0 : Math.min(contentHeight > 0 ? contentHeight : 40, greatestHeight)
    clip: true
    reuseItems: true
    // Rows beyond the edge would be made later, bit by bit; one that is due when its company folds is asked for in vain.
    cacheBuffer: 0
    boundsBehavior: Flickable.StopAtBounds
    // Rows may go while it has the keyboard, which it keeps then.
    activeFocusOnTab: isOverflowing || hasKeyboard
    // The keyboard is on the list, not on a row.
    currentIndex: -1
    spacing: 8
    Accessible.role: Accessible.List

    function scrollBy(distance: real) {
        contentY = originY + Math.max(0, Math.min(contentY - originY + distance, contentHeight - height));
    }

    Keys.onUpPressed: scrollBy(-40)
    Keys.onDownPressed: scrollBy(40)
    Keys.onPressed: event => {
        const step = event.key === Qt.Key_PageDown ? height : event.key === Qt.Key_PageUp ? -height
                   : event.key === Qt.Key_End ? contentHeight : event.key === Qt.Key_Home ? -contentHeight : 0;
        event.accepted = step !== 0 && isOverflowing;
        if (event.accepted)
            scrollBy(step);
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar

        policy: root.isOverflowing ? T.ScrollBar.AlwaysOn : T.ScrollBar.AlwaysOff
        implicitWidth: 8
        padding: 2
        minimumSize: 0.1
        visible: root.isOverflowing
        Accessible.ignored: true

        contentItem: Box {
            radius: 2
            color: Qt.alpha(root.theme.foreground, bar.pressed ? 0.6 : bar.hovered ? 0.45 : 0.25)
        }
    }

    Box {
        parent: root
        anchors.fill: parent
        radius: 5
        color: "transparent"
        borderWidth: 2
        borderColor: root.theme.focusRing
        visible: root.hasKeyboard
    }
}
