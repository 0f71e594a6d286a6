import QtQuick
import QtQuick.Templates as T
import Corvellan.Views

/// Shows its children from the top, and scrolls what is too tall by wheel, bar and keys. Dragging stays
/// with whoever lies behind, so that the panel can be moved by its text.
Item {
    id: root

    required property Theme theme
    default property alias content: holder.data
    /// What is cut off at the bottom fades into a dark ground.
    property bool hasFade: false
    /// Whatever gets the keyboard is brought into view, with this much round it; negative for no such service.
    property real focusMargin: -1
    readonly property bool followsFocus: focusMargin >= 0
    /// The height of everything in it.
    readonly property real contentHeight: holder.childrenRect.height
    readonly property bool isOverflowing: contentHeight > height + 0.5

    implicitHeight: contentHeight
    activeFocusOnTab: isOverflowing && !followsFocus

    Accessible.role: Accessible.Pane
    Accessible.ignored: !isOverflowing

    function scrollBy(distance: real) {
        flickable.contentY = Math.max(0, Math.min(flickable.contentY + distance, contentHeight - height));
    }

    /// Scrolls just so far that all of `item` is in view.
    function reveal(item: Item) {
        const margin = Math.max(0, focusMargin);
        const top = item.mapToItem(holder, 0, 0).y - margin;
        const bottom = top + item.height + 2 * margin;
        if (top < flickable.contentY)
            scrollBy(top - flickable.contentY);
        else if (bottom > flickable.contentY + height)
            scrollBy(bottom - flickable.contentY - height);
    }

    function holds(item: Item): bool {
        for (let above = item; above; above = above.parent)
            if (above === holder)
                return true;
        return false;
    }

    Connections {
        target: root.followsFocus ? root.Window.window : null

        function onActiveFocusItemChanged() {
            const item = root.Window.activeFocusItem;
            if (root.holds(item))
                root.reveal(item);
        }
    }

    /// False for a key that scrolls nothing.
    function scrollByKey(key: int): bool {
        const step = key === Qt.Key_Up ? -24 : key === Qt.Key_Down ? 24
                   : key === Qt.Key_PageDown ? height : key === Qt.Key_PageUp ? -height
                   : key === Qt.Key_End ? contentHeight : key === Qt.Key_Home ? -contentHeight : 0;
        scrollBy(step);
        return step !== 0;
    }

    Keys.onPressed: event => event.accepted = scrollByKey(event.key)
    onIsOverflowingChanged: scrollBy(0)
    onHeightChanged: scrollBy(0)
    onContentHeightChanged: scrollBy(0)

    Flickable {
        id: flickable

        anchors.fill: parent
        contentWidth: width
        contentHeight: root.contentHeight
        interactive: false
        clip: true

        Item {
            id: holder

            width: flickable.width
            height: childrenRect.height
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

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 18
        visible: root.hasFade && root.isOverflowing && !flickable.atYEnd
        gradient: Gradient {
            GradientStop {
                position: 0
                color: Qt.alpha(root.theme.black, 0)
            }
            GradientStop {
                position: 1
                color: Qt.alpha(root.theme.black, 0.85)
            }
        }
    }

    WheelHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => root.scrollBy(event.pixelDelta.y !== 0 ? -event.pixelDelta.y : -event.angleDelta.y / 3)
    }

    Box {
        anchors.fill: parent
        anchors.margins: 1
        radius: 5
        color: "transparent"
        borderWidth: 2
        borderColor: root.theme.focusRing
        visible: root.activeFocus && root.activeFocusOnTab
    }
}
