import QtQuick
import QtQuick.Templates as T

/// What every button does with the keyboard and for screen readers; how it looks is up to each.
T.AbstractButton {
    id: root

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true

    // A key that is held presses once: the next face may have a button of its own under the same key.
    Keys.onPressed: (event) => {
        const isReturn = event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
        event.accepted = isReturn || event.key === Qt.Key_Space && event.isAutoRepeat;
        if (isReturn && !event.isAutoRepeat)
            root.clicked();
    }
    Keys.onReleased: (event) => {
        event.accepted = event.key === Qt.Key_Space && event.isAutoRepeat;
    }

    Accessible.role: Accessible.Button
    Accessible.name: root.text
    // A press that comes through accessibility does not emit `clicked` by itself.
    Accessible.onPressAction: root.clicked()

    HoverHandler {
        enabled: root.enabled
        cursorShape: Qt.PointingHandCursor
    }
}
