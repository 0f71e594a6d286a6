import QtQuick
import Corvellan.Views

/// How the call is shown.
FormSection {
    id: root

    required property SettingsView settings

    title: qsTr("Display")

    FormRow {
        theme: root.theme
        label: qsTr("Coaching font size")
        isLabelSpoken: false

        FormPicker {
            objectName: "fontSize"
            theme: root.theme
            label: qsTr("Coaching font size")
            model: root.settings.fontSizes
            selected: root.settings.fontSizeIndex
            displayText: root.settings.fontSizeText
            onChosen: index => root.settings.fontSizeIndex = index
        }
    }
}
