import QtQuick
import Corvellan.Views

/// Who is signed in.
FormSection {
    id: root

    required property SettingsView settings

    title: qsTr("Account")

    FormRow {
        objectName: "accountRow"
        theme: root.theme
        label: root.settings.accountText
        labelColorName: root.settings.accountColor

        FormText {
            objectName: "account"
            theme: root.theme
            text: root.settings.userEmail
        }
        FormButton {
            objectName: "logout"
            theme: root.theme
            visible: root.settings.canLogout
            text: qsTr("Logout")
            onClicked: root.settings.logout()
        }
        FormButton {
            objectName: "login"
            theme: root.theme
            visible: root.settings.canLogin
            text: qsTr("Login with Teskara")
            onClicked: root.settings.login()
        }
    }
}
