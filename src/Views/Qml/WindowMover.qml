import QtQuick

/// Lies behind everything else and asks, once a drag, that the window be moved along.
MouseArea {
    id: root

    signal moveRequested

    // A click that trembles is no drag.
    readonly property int threshold: 6
    property point pressedAt
    property bool hasAsked: false

    onPressed: event => {
        pressedAt = Qt.point(event.x, event.y);
        hasAsked = false;
    }
    onPositionChanged: event => {
        if (hasAsked || Math.hypot(event.x - pressedAt.x, event.y - pressedAt.y) < threshold)
            return;
        hasAsked = true;
        root.moveRequested();
    }
}
