import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// `PressButton` for one of the pages of a window. It shows `isSelected`; whoever owns that changes it on `clicked`.
T.TabButton {
    id: root

    required property bool isSelected

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    checked: isSelected
    // A press has set it by itself.
    onToggled: root.checked = Qt.binding(() => root.isSelected)

    Accessible.role: Accessible.PageTab
    Accessible.name: root.text
    Accessible.selectable: true
    Accessible.selected: isSelected
    Accessible.onPressAction: root.clicked()

    PressSupport {
        button: root
    }
}
