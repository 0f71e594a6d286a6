import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// What every button is with the keyboard and for screen readers; how it looks is up to each. They are told the role
/// of the control that it is made of, whatever it says itself: hence the others whose names begin with Press.
T.AbstractButton {
    id: root

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true

    Accessible.role: Accessible.Button
    Accessible.name: root.text
    // A press that comes through accessibility does not emit `clicked` by itself.
    Accessible.onPressAction: root.clicked()

    PressSupport {
        button: root
    }
}
