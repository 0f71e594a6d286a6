import QtQuick
import Corvellan.Views

/// The line between two blocks.
Box {
    required property Theme theme

    implicitHeight: 1
    color: theme.hairline
}
