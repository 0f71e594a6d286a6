import QtQuick
import Corvellan.Views

/// What of the screen the coach sees, and who else sees the window.
FormSection {
    id: root

    required property SettingsView settings
    required property StealthView stealth

    title: qsTr("Screen context")

    FormSwitch {
        objectName: "shareScreen"
        theme: root.theme
        text: qsTr("Share active window with coach")
        caption: root.settings.sharingText
        isOn: root.settings.sharesScreen
        onChanged: isOn => root.settings.sharesScreen = isOn
    }
    FormRow {
        objectName: "hiddenRow"
        theme: root.theme
        label: qsTr("Hidden from screen capture")
        caption: root.stealth.statusText
        notice: root.stealth.testResultText

        FormButton {
            objectName: "testHiding"
            theme: root.theme
            visible: root.stealth.canTest || root.stealth.isTesting
            enabled: !root.stealth.isTesting
            text: root.stealth.isTesting ? qsTr("Testing...") : qsTr("Test")
            onClicked: root.stealth.runSelfTest()
        }
    }
    FormCode {
        objectName: "hidingAdvice"
        theme: root.theme
        visible: text.length > 0
        label: qsTr("Lines for the desktop's configuration")
        text: root.stealth.adviceText
    }
}
