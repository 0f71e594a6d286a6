pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// Introduces the product to a new user, step by step.
FocusScope {
    id: root

    required property ViewStates views
    readonly property OnboardingView onboarding: views.onboarding
    readonly property Theme theme: views.theme
    readonly property var page: onboarding.page
    readonly property bool isInFront: Window.active

    focus: true
    // The step scrolls whatever has the keyboard.
    Keys.forwardTo: [area]
    Keys.onReturnPressed: event => goOn(event)
    Keys.onEnterPressed: event => goOn(event)
    // Whoever comes back from the desktop's settings may have changed something there.
    onIsInFrontChanged: if (isInFront) onboarding.readPermissions()

    /// A key that is held goes one step.
    function goOn(event: var) {
        if (event.isAutoRepeat)
            return;
        if (onboarding.isLastStep)
            onboarding.finish();
        else
            onboarding.next();
    }

    Component.onCompleted: {
        onboarding.appear();
        heading.forceActiveFocus();
    }

    Connections {
        target: root.onboarding

        function onStepChanged() {
            heading.forceActiveFocus();
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ColumnLayout {
            Layout.fillWidth: true
            Layout.topMargin: 16
            Layout.leftMargin: 24
            Layout.rightMargin: 24
            Layout.bottomMargin: 4
            spacing: 8

            ReadOut {
                Layout.fillWidth: true
                objectName: "onboardingProgress"
                theme: root.theme
                text: root.onboarding.progressText
                size: 12
                color: root.theme.secondary
                horizontalAlignment: Text.AlignHCenter
            }
            RowLayout {
                Layout.alignment: Qt.AlignHCenter
                spacing: 5

                Repeater {
                    model: root.onboarding.totalSteps

                    Box {
                        required property int index

                        implicitWidth: 28
                        implicitHeight: 4
                        radius: 2
                        color: index <= root.onboarding.step ? root.theme.accent : Qt.alpha(root.theme.foreground, 0.16)
                    }
                }
            }
        }

        ScrollArea {
            id: area

            Layout.fillWidth: true
            Layout.fillHeight: true
            objectName: "onboardingArea"
            theme: root.theme
            focusMargin: 8
            Accessible.name: root.page.title

            Item {
                width: parent ? parent.width : 0
                height: Math.max(step.implicitHeight + 16, area.height)

                ColumnLayout {
                    id: step

                    anchors.centerIn: parent
                    width: Math.min(parent.width - 48, 520)
                    spacing: 10

                    IconLabel {
                        Layout.alignment: Qt.AlignHCenter
                        theme: root.theme
                        visible: symbol.length > 0
                        symbol: root.page.symbol
                        size: 46
                        color: root.theme.accent
                    }
                    ReadOut {
                        id: heading

                        Layout.fillWidth: true
                        objectName: "onboardingTitle"
                        theme: root.theme
                        text: root.page.title
                        size: 22
                        font.weight: Font.Bold
                        horizontalAlignment: Text.AlignHCenter
                        wrapMode: Text.Wrap
                        Accessible.role: Accessible.Heading
                        Accessible.focusable: true
                    }
                    ReadOut {
                        Layout.fillWidth: true
                        Layout.bottomMargin: 4
                        objectName: "onboardingText"
                        theme: root.theme
                        visible: text.length > 0
                        text: root.page.text
                        size: 14
                        lineHeight: 1.2
                        color: root.theme.secondary
                        horizontalAlignment: Text.AlignHCenter
                        wrapMode: Text.Wrap
                    }
                    RowLayout {
                        Layout.alignment: Qt.AlignHCenter
                        Layout.fillWidth: false
                        Layout.maximumWidth: step.width
                        Layout.topMargin: 6
                        objectName: "onboardingAccount"
                        visible: root.onboarding.accountText.length > 0
                        spacing: 7

                        IconLabel {
                            Layout.alignment: Qt.AlignTop
                            objectName: "accountSymbol"
                            theme: root.theme
                            symbol: "checkmark.circle.fill"
                            size: 14
                            color: root.theme.green
                        }
                        ReadOut {
                            Layout.fillWidth: true
                            Layout.maximumWidth: Math.ceil(implicitWidth)
                            objectName: "accountText"
                            theme: root.theme
                            text: root.onboarding.accountText
                            size: 13
                            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                        }
                    }
                    ExplainedRows {
                        objectName: "onboardingRows"
                        theme: root.theme
                        rows: root.page.rows
                        // The six criteria stand on one page.
                        isCompact: root.page.rows.length > 4
                    }
                    ExplainedNote {
                        objectName: "onboardingNote"
                        theme: root.theme
                        visible: text.length > 0
                        symbol: root.page.note.symbol ?? ""
                        colorName: root.page.note.colorName ?? ""
                        strength: root.page.note.opacity ?? 0
                        text: root.page.note.text ?? ""
                    }
                    Repeater {
                        model: root.onboarding.isLastStep ? root.onboarding.permissionCards : null

                        PermissionCard {
                            objectName: "permissionCard" + index
                            theme: root.theme
                            onEnableRequested: root.onboarding.enable(index)
                        }
                    }
                }
            }
        }

        Divider {
            Layout.fillWidth: true
            theme: root.theme
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: 20
            Layout.rightMargin: 20
            Layout.topMargin: 12
            Layout.bottomMargin: 12
            spacing: 10

            FormButton {
                implicitHeight: 36
                objectName: "onboardingBack"
                theme: root.theme
                visible: root.onboarding.canGoBack
                text: qsTr("Back")
                symbol: "chevron.left"
                onClicked: root.onboarding.back()
            }
            Item {
                Layout.fillWidth: true
            }
            PlainButton {
                implicitHeight: 36
                leftPadding: 14
                rightPadding: 14
                objectName: "onboardingSkip"
                theme: root.theme
                visible: !root.onboarding.isLastStep
                text: qsTr("Skip")
                size: 13
                color: root.theme.secondary
                onClicked: root.onboarding.finish()
            }
            ProminentButton {
                implicitHeight: 36
                objectName: "onboardingNext"
                theme: root.theme
                visible: !root.onboarding.isLastStep
                text: qsTr("Next")
                symbol: ""
                color: root.theme.accent
                onClicked: root.onboarding.next()
            }
            ProminentButton {
                implicitHeight: 36
                objectName: "getStarted"
                theme: root.theme
                visible: root.onboarding.isLastStep
                text: qsTr("Get Started")
                symbol: ""
                onClicked: root.onboarding.finish()
                // It stands where "Next" stood: with this the second press of two in quick succession does nothing.
                onDoubleClicked: {}
            }
        }
    }
}
