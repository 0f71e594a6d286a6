import QtQuick

/// A screen of the dashboard. It may be made long before anybody sees it.
FocusScope {
    id: root

    /// It is what the user sees of the tabs.
    property bool isOnStage: true

    signal appeared
    signal disappeared

    width: parent ? parent.width : 0
    height: parent ? parent.height : 0
    focus: true
    onIsOnStageChanged: isOnStage ? appeared() : disappeared()
    Component.onCompleted: if (isOnStage) appeared()
    Component.onDestruction: if (isOnStage) disappeared()
}
