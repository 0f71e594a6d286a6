import QtQuick
import Corvellan.Views

/// What has gone wrong, in red, also spoken as soon as it appears. Takes no room while there is nothing.
ReadOut {
    id: root

    property string colorName: "red"

    visible: text.length > 0
    size: 12
    color: theme.named[colorName]
    wrapMode: Text.Wrap
    Accessible.role: Accessible.Notification

    AccessibleAlert {
        target: root
        text: root.text
    }
}
