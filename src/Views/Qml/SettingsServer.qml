import QtQuick
import Corvellan.Views

/// The coaching server, and whether it is connected.
FormSection {
    id: root

    required property SettingsView settings
    /// Where the keyboard goes first.
    readonly property Item first: serverMode

    title: qsTr("Server")

    FormRow {
        theme: root.theme
        label: qsTr("Mode")
        isLabelSpoken: false

        FormPicker {
            id: serverMode

            objectName: "serverMode"
            theme: root.theme
            label: qsTr("Mode")
            model: root.settings.serverModes
            selected: root.settings.serverModeIndex
            onChosen: index => root.settings.serverModeIndex = index
        }
    }
    FormRow {
        theme: root.theme
        visible: root.settings.isCustomServer
        label: qsTr("WebSocket URL")
        isLabelSpoken: false

        FormTextField {
            objectName: "customServerURL"
            theme: root.theme
            label: qsTr("WebSocket URL")
            placeholderText: "ws://..."
            text: root.settings.customServerURL
            inputMethodHints: Qt.ImhUrlCharactersOnly | Qt.ImhNoAutoUppercase
            onEdited: value => {
                if (value !== root.settings.customServerURL)
                    root.settings.customServerURL = value;
            }
        }
    }
    FormRow {
        theme: root.theme
        label: qsTr("Status")

        StatusDot {
            objectName: "connectionDot"
            theme: root.theme
            colorName: root.settings.connectionColor
        }
        FormText {
            objectName: "statusText"
            theme: root.theme
            text: root.settings.statusText
        }
    }
}
