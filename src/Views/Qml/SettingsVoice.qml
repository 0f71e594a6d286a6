import QtQuick
import Corvellan.Views

/// The voice of spoken replies.
FormSection {
    id: root

    required property SettingsView settings

    title: qsTr("TTS Voice")

    FormRow {
        objectName: "voiceRow"
        theme: root.theme
        label: root.settings.voiceText
        caption: root.settings.voiceCaption
    }
}
