import QtQuick
import Corvellan.Views

/// How the program starts.
FormSection {
    id: root

    required property SettingsView settings

    title: qsTr("General")

    FormSwitch {
        objectName: "launchAtLogin"
        theme: root.theme
        text: qsTr("Launch at login")
        isOn: root.settings.launchesAtLogin
        onChanged: isOn => root.settings.launchesAtLogin = isOn
    }
}
