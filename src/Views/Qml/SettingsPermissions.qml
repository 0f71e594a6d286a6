pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// What the program may capture.
FormSection {
    id: root

    required property SettingsView settings

    title: qsTr("Permissions")

    Repeater {
        model: root.settings.permissionRows

        FormRow {
            id: permission

            required label
            required property int index
            required property string detail
            required property string statusText
            required property string statusColor

            objectName: "permissionRow" + index
            theme: root.theme
            caption: detail

            FormText {
                objectName: "permissionStatus" + permission.index
                theme: root.theme
                text: permission.statusText
                size: 11
                colorName: permission.statusColor
            }
        }
    }
    FormRow {
        theme: root.theme
        contentShare: 1

        FormButton {
            objectName: "openSystemSettings"
            theme: root.theme
            text: qsTr("Open System Settings")
            onClicked: root.settings.openSystemSettings()
        }
        Item {
            Layout.fillWidth: true
        }
    }
}
