import QtQuick
import Corvellan.Views

/// The heading of a group of the brief.
ReadOut {
    size: 11
    font.weight: Font.DemiBold
    color: theme.secondary
    Accessible.role: Accessible.Heading
}
