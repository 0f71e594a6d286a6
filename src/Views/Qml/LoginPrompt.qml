import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// In place of the home screen while nobody is signed in.
FocusScope {
    id: root

    required property HomeView home
    required property Theme theme

    objectName: "loginPrompt"
    focus: true

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 64, 420)
        spacing: 0

        IconLabel {
            Layout.alignment: Qt.AlignHCenter
            theme: root.theme
            symbol: "person.crop.circle.badge.questionmark"
            size: 44
            color: root.theme.secondary
        }
        ReadOut {
            Layout.fillWidth: true
            Layout.topMargin: 14
            objectName: "loginHeadline"
            theme: root.theme
            text: qsTr("Sign in to start coaching")
            size: 19
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        ReadOut {
            Layout.fillWidth: true
            Layout.topMargin: 8
            objectName: "loginLine"
            theme: root.theme
            text: qsTr("Real-time AI coaching for sales calls — MEDDIC tracking, objection handling, and next-step prompts.")
            size: 13
            lineHeight: 1.2
            color: root.theme.secondary
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        ProminentButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 24
            objectName: "signIn"
            theme: root.theme
            text: qsTr("Sign In")
            symbol: "person.crop.circle"
            color: root.theme.accent
            focus: true
            onClicked: root.home.login()
        }
        ProblemLine {
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: parent.width
            Layout.topMargin: 18
            objectName: "loginProblem"
            theme: root.theme
            text: root.home.errorMessage
        }
    }
}
