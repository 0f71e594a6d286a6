pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// A Markdown note that scrolls, with its links for the keyboard and for screen readers. The ground behind it is
/// to be dark.
Item {
    id: root

    required property Theme theme
    property alias markdown: page.markdown
    property alias zoom: page.zoom
    readonly property alias page: page

    /// The user has pressed a mail or telephone link.
    signal linkActivated(string address)

    implicitHeight: page.contentHeight

    MarkdownWebView {
        id: page

        anchors.fill: parent
        objectName: "page"
        activeFocusOnTab: true
        clip: true
        onLinkActivated: address => root.linkActivated(address)

        Accessible.role: Accessible.Document
        Accessible.name: page.plainText
        Accessible.focusable: true
        Accessible.readOnly: true

        Repeater {
            model: page.links

            Item {
                id: link

                required property var modelData
                required property int index

                x: link.modelData.rect.x - page.contentX
                y: link.modelData.rect.y - page.contentY
                width: link.modelData.rect.width
                height: link.modelData.rect.height
                objectName: "link" + index
                activeFocusOnTab: true

                Accessible.role: Accessible.Link
                Accessible.name: link.modelData.text
                Accessible.focusable: true
                Accessible.onPressAction: root.linkActivated(link.modelData.address)

                onActiveFocusChanged: {
                    if (activeFocus)
                        page.reveal(link.modelData.rect);
                }
                Keys.onPressed: event => {
                    event.accepted = event.key === Qt.Key_Return || event.key === Qt.Key_Enter
                                     || event.key === Qt.Key_Space;
                    if (event.accepted && !event.isAutoRepeat)
                        root.linkActivated(link.modelData.address);
                }

                Box {
                    anchors.fill: parent
                    anchors.margins: -2
                    visible: link.activeFocus
                    radius: 4
                    color: "transparent"
                    borderWidth: 2
                    borderColor: root.theme.focusRing
                }
            }
        }
    }

    T.ScrollBar {
        id: bar

        anchors.right: parent.right
        height: parent.height
        objectName: "scrollBar"
        implicitWidth: 10
        padding: 2
        minimumSize: 0.08
        size: page.contentHeight > 0 ? page.height / page.contentHeight : 1
        visible: size < 1
        onPositionChanged: {
            if (pressed)
                page.contentY = position * page.contentHeight;
        }
        Accessible.ignored: true

        contentItem: Box {
            implicitWidth: 6
            radius: 3
            color: Qt.rgba(1, 1, 1, bar.pressed ? 0.6 : bar.hovered ? 0.45 : 0.25)
        }

        Binding on position {
            when: !bar.pressed
            value: page.contentHeight > 0 ? page.contentY / page.contentHeight : 0
        }
    }

    T.ScrollBar {
        id: sideBar

        anchors.bottom: parent.bottom
        width: parent.width
        orientation: Qt.Horizontal
        implicitHeight: 10
        padding: 2
        minimumSize: 0.08
        size: page.contentWidth > 0 ? page.width / page.contentWidth : 1
        visible: size < 1
        onPositionChanged: {
            if (pressed)
                page.contentX = position * page.contentWidth;
        }
        Accessible.ignored: true

        contentItem: Box {
            implicitHeight: 6
            radius: 3
            color: Qt.rgba(1, 1, 1, sideBar.pressed ? 0.6 : sideBar.hovered ? 0.45 : 0.25)
        }

        Binding on position {
            when: !sideBar.pressed
            value: page.contentWidth > 0 ? page.contentX / page.contentWidth : 0
        }
    }

    Box {
        anchors.fill: parent
        anchors.margins: 1
        radius: 5
        color: "transparent"
        borderWidth: 2
        borderColor: root.theme.focusRing
        objectName: "focusRing"
        visible: page.visualFocus
    }
}
