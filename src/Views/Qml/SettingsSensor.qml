import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// The browser extension, and what it sees.
FormSection {
    id: root

    required property SettingsView settings

    title: qsTr("HubSpot Sensor")

    FormRow {
        theme: root.theme
        label: qsTr("Chrome Extension")

        StatusDot {
            objectName: "sensorDot"
            theme: root.theme
            colorName: root.settings.sensorColor
        }
        FormText {
            objectName: "sensorText"
            theme: root.theme
            text: root.settings.sensorText
        }
    }
    FormRow {
        objectName: "installRow"
        theme: root.theme
        visible: !root.settings.sensorConnected
        caption: qsTr("Install the Chrome extension to auto-detect HubSpot calls and contacts.")

        FormLink {
            objectName: "installSensor"
            theme: root.theme
            text: qsTr("Install Corvellan Sensor")
            onClicked: root.settings.openExtensionPage()
        }
    }
    FormRow {
        objectName: "viewingRow"
        theme: root.theme
        visible: root.settings.viewingText.length > 0
        label: qsTr("Viewing")

        FormText {
            objectName: "viewing"
            theme: root.theme
            text: root.settings.viewingText
        }
    }
    FormRow {
        objectName: "callRow"
        theme: root.theme
        visible: root.settings.showsCall
        label: qsTr("Call")

        FormText {
            objectName: "call"
            theme: root.theme
            text: qsTr("Active")
            colorName: "red"
        }
    }
    FormSwitch {
        objectName: "autoStart"
        theme: root.theme
        text: qsTr("Auto-start coaching on call")
        isOn: root.settings.autoStartOnCall
        onChanged: isOn => root.settings.autoStartOnCall = isOn
    }
    FormRow {
        theme: root.theme
        contentShare: 1

        FormButton {
            objectName: "checkStatus"
            theme: root.theme
            text: qsTr("Check Status")
            onClicked: root.settings.checkSensorStatus()
        }
        Item {
            Layout.fillWidth: true
        }
    }
}
