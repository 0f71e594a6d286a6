import QtQuick
import Corvellan.Views

/// Where a call is prepared and started.
TabScreen {
    id: root

    required property HomeView home
    required property Theme theme
    readonly property bool isOpen: home.isLoggedIn

    function showFace() {
        face.setSource(isOpen ? "HomeContent.qml" : "LoginPrompt.qml", { home: home, theme: theme });
    }

    Component.onCompleted: showFace()
    onIsOpenChanged: showFace()

    Loader {
        id: face

        anchors.fill: parent
        objectName: "homeFace"
        focus: true
    }
}
