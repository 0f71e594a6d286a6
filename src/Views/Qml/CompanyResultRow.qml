pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvellan.Views

/// A match of the search: its head, and when unfolded what is known of the company.
Item {
    id: root

    required property HomeView home
    required property Theme theme
    required property int index
    required property string name
    required property string source
    required property string domain
    required property string revenue
    required property string orders
    required property bool isExpanded
    required property string chevron
    /// All of it but the name, for screen readers.
    required property string spoken

    readonly property Item head: press

    implicitWidth: column.implicitWidth
    implicitHeight: column.implicitHeight

    function showDetails() {
        if (isExpanded)
            details.setSource("CompanyBrief.qml", { home: home, theme: theme, row: index });
        else
            details.source = "";
    }

    // From wherever in the open brief the keyboard is.
    Keys.onEscapePressed: event => {
        event.accepted = isExpanded;
        if (!isExpanded)
            return;
        press.forceActiveFocus(Qt.TabFocusReason);
        home.toggleCompany(index);
    }
    Component.onCompleted: showDetails()
    onIsExpandedChanged: showDetails()

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.right: parent.right
        spacing: 0

        RowButton {
            id: press

            Layout.fillWidth: true
            objectName: "resultHead" + root.index
            theme: root.theme
            hasDivider: root.index > 0
            text: root.name
            Accessible.description: qsTr("%1, %2").arg(root.isExpanded ? qsTr("Unfolded") : qsTr("Folded"))
                                                  .arg(root.spoken)
            onClicked: root.home.toggleCompany(root.index)

            contentItem: RowLayout {
                spacing: 10

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 3

                    RowLayout {
                        Layout.fillWidth: true
                        spacing: 8

                        ReadOut {
                            Layout.fillWidth: true
                            Layout.maximumWidth: Math.ceil(implicitWidth)
                            objectName: "resultName"
                            theme: root.theme
                            text: root.name
                            size: 14
                            font.weight: Font.Medium
                            elide: Text.ElideRight
                            Accessible.ignored: true
                        }
                        Pill {
                            objectName: "resultSource"
                            visible: root.source.length > 0
                            theme: root.theme
                            text: root.source
                            isCode: true
                        }
                        Item {
                            Layout.fillWidth: true
                            Layout.preferredWidth: 0
                        }
                    }
                    FlowLayout {
                        Layout.fillWidth: true
                        spacing: 10
                        visible: root.domain.length > 0 || root.revenue.length > 0 || root.orders.length > 0

                        ReadOut {
                            objectName: "resultDomain"
                            theme: root.theme
                            visible: text.length > 0
                            text: root.domain
                            size: 11
                            color: root.theme.secondary
                            Accessible.ignored: true
                        }
                        ReadOut {
                            objectName: "resultRevenue"
                            theme: root.theme
                            visible: text.length > 0
                            text: root.revenue
                            size: 11
                            isMonospaced: true
                            color: root.theme.green
                            Accessible.ignored: true
                        }
                        ReadOut {
                            objectName: "resultOrders"
                            theme: root.theme
                            visible: text.length > 0
                            text: root.orders
                            size: 11
                            color: root.theme.secondary
                            Accessible.ignored: true
                        }
                    }
                }
                IconLabel {
                    objectName: "resultChevron"
                    theme: root.theme
                    symbol: root.chevron
                    size: 14
                    color: root.theme.secondary
                }
            }
        }
        Loader {
            id: details

            Layout.fillWidth: true
            Layout.leftMargin: 14
            Layout.rightMargin: 14
            Layout.bottomMargin: 14
            visible: root.isExpanded
        }
    }
}
