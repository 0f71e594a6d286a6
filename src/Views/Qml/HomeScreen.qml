import QtQuick
import Corvellan.Views

/// Where a call is prepared and started.
FocusScope {
    id: root

    required property HomeView home
    required property Theme theme
    readonly property bool isOpen: home.isLoggedIn

    focus: true

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
