import QtQuick
import Corvellan.Views

/// A Markdown note among other things, as high as it is, though not without bound: beyond that it scrolls.
Item {
    id: root

    required property Theme theme
    required property string text
    /// Has no effect: the note's style names its own.
    property font font

    /// The user has pressed a mail or telephone link.
    signal linkActivated(string address)

    readonly property real leastHeight: 100
    readonly property real greatestHeight: 2000

    implicitHeight: Math.max(leastHeight, Math.min(page.implicitHeight + notice.takenHeight, greatestHeight))

    Box {
        anchors.fill: parent
        radius: 6
        // The note's colours are made for a dark ground.
        color: root.theme.isDark ? "transparent" : "#1c1c20"
    }

    MarkdownPage {
        id: page

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: notice.top
        theme: root.theme
        markdown: root.text
        onLinkActivated: address => root.linkActivated(address)
    }

    CutNotice {
        id: notice

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        theme: root.theme
        isCut: page.page.isCut
    }
}
