import QtQuick
import Corvellan.Views

/// The heading of a screen of the dashboard.
ReadOut {
    id: root

    objectName: "title"
    size: 16
    font.weight: Font.DemiBold
    leftPadding: 20
    rightPadding: 20
    topPadding: 14
    bottomPadding: 12
    elide: Text.ElideRight
    Accessible.role: Accessible.Heading
}
