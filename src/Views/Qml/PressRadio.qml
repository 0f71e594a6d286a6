import QtQuick
import QtQuick.Templates as T

/// `PressButton` for one of a few choices. A type of its own, since of a button of Qt 6.4 screen readers are told the
/// role of its type, whatever it says itself. It shows `isSelected`; whoever owns that changes it on `clicked`.
T.RadioButton {
    id: root

    required property bool isSelected

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    checked: isSelected
    // A press has set it by itself.
    onToggled: root.checked = Qt.binding(() => root.isSelected)

    // A key that is held presses once.
    Keys.onPressed: (event) => {
        const isReturn = event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
        event.accepted = isReturn || event.key === Qt.Key_Space && event.isAutoRepeat;
        if (isReturn && !event.isAutoRepeat)
            root.clicked();
    }
    Keys.onReleased: (event) => {
        event.accepted = event.key === Qt.Key_Space && event.isAutoRepeat;
    }

    Accessible.role: Accessible.RadioButton
    Accessible.name: root.text
    Accessible.checkable: true
    Accessible.checked: isSelected
    // What comes through accessibility does not emit `clicked` by itself.
    Accessible.onPressAction: root.clicked()
    Accessible.onToggleAction: root.clicked()

    HoverHandler {
        enabled: root.enabled
        cursorShape: Qt.PointingHandCursor
    }
}
