import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// A long list, of which only what is in view exists. Scrolled by wheel, bar and keys, as `ScrollArea` is; what
/// gets the keyboard in its header is brought into view.
ListView {
    id: root

    required property Theme theme
    readonly property real focusMargin: 36
    readonly property bool isOverflowing: contentHeight > height + 0.5

    clip: true
    interactive: false
    reuseItems: true
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    highlightFollowsCurrentItem: true

    // A header that gets its height late grows upwards, out of view.
    property real lastOriginY: 0
    onOriginYChanged: {
        const wasAtTop = contentY <= lastOriginY + 1;
        lastOriginY = originY;
        if (wasAtTop)
            contentY = originY;
    }

    function scrollBy(distance: real) {
        contentY = Math.max(originY, Math.min(contentY + distance, originY + contentHeight - height));
    }

    /// Scrolls just so far that all of `item` is in view.
    function reveal(item: Item) {
        const top = item.mapToItem(root, 0, 0).y - focusMargin;
        const bottom = top + item.height + 2 * focusMargin;
        if (top < 0)
            scrollBy(top);
        else if (bottom > height)
            scrollBy(Math.min(top, bottom - height));
    }

    /// The keyboard is on a row, and not on something in the header.
    readonly property bool hasRowFocus: activeFocus && !isInHeader(Window.activeFocusItem)

    function isInHeader(item: Item): bool {
        for (let above = item; above; above = above.parent)
            if (above === headerItem)
                return true;
        return false;
    }

    /// True for a key that has scrolled.
    function scrollByKey(key: int): bool {
        const step = key === Qt.Key_Down ? 24 : key === Qt.Key_Up ? -24
                   : key === Qt.Key_PageDown ? height : key === Qt.Key_PageUp ? -height
                   : key === Qt.Key_End ? contentHeight : key === Qt.Key_Home ? -contentHeight : 0;
        scrollBy(step);
        return step !== 0;
    }

    Connections {
        target: root.Window.window

        function onActiveFocusItemChanged() {
            const item = root.Window.activeFocusItem;
            if (item && root.isInHeader(item))
                root.reveal(item);
        }
    }

    WheelHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => root.scrollBy(event.pixelDelta.y !== 0 ? event.pixelDelta.y * -1 : -event.angleDelta.y / 3)
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar

        policy: root.isOverflowing ? T.ScrollBar.AlwaysOn : T.ScrollBar.AlwaysOff
        implicitWidth: 8
        padding: 2
        minimumSize: 0.1
        visible: root.isOverflowing
        Accessible.ignored: true

        contentItem: Box {
            radius: 2
            color: Qt.alpha(root.theme.foreground, bar.pressed ? 0.6 : bar.hovered ? 0.45 : 0.25)
        }
    }
}
