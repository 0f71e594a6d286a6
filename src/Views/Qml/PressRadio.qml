import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// `PressButton` for one of a few choices. It shows `isSelected`; whoever owns that changes it on `clicked`.
T.RadioButton {
    id: root

    required property bool isSelected

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    checked: isSelected
    // A press has set it by itself.
    onToggled: root.checked = Qt.binding(() => root.isSelected)

    Accessible.role: Accessible.RadioButton
    Accessible.name: root.text
    Accessible.checkable: true
    Accessible.checked: isSelected
    // What comes through accessibility does not emit `clicked` by itself.
    Accessible.onPressAction: root.clicked()
    Accessible.onToggleAction: root.clicked()

    PressSupport {
        button: root
    }
}
