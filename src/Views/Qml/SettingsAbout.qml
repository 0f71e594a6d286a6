import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// Which program this is.
FormSection {
    id: root

    required property SettingsView settings

    title: qsTr("About")

    FormRow {
        objectName: "aboutRow"
        theme: root.theme
        caption: root.settings.aboutText
    }
    FormRow {
        theme: root.theme
        label: qsTr("Version")

        FormText {
            objectName: "version"
            theme: root.theme
            text: root.settings.version
        }
    }
    FormRow {
        theme: root.theme
        label: qsTr("Build")

        FormText {
            objectName: "build"
            theme: root.theme
            text: root.settings.build
        }
    }
    FormRow {
        theme: root.theme
        contentShare: 1

        FormButton {
            objectName: "checkForUpdates"
            theme: root.theme
            text: qsTr("Check for Updates")
            symbol: "arrow.clockwise"
            enabled: root.settings.canCheckForUpdates
            onClicked: root.settings.checkForUpdates()
        }
        Item {
            Layout.fillWidth: true
        }
    }
}
