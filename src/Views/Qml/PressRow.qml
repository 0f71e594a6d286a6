import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// `PressButton` for a row of a list.
T.ItemDelegate {
    id: root

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true

    Accessible.role: Accessible.ListItem
    Accessible.name: root.text
    Accessible.onPressAction: root.clicked()

    PressSupport {
        button: root
    }
}
