import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The overview page: the header with its two buttons, the summary, and every category under
// its heading in catalogue order.
Flickable {
    id: overview

    required property CleanModel model
    signal cleanRequested()

    contentWidth: width
    contentHeight: page.implicitHeight + Theme.spacingHuge * 2
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: ScrollBar {}

    ColumnLayout {
        id: page
        x: Theme.spacingHuge
        y: Theme.spacingHuge
        width: overview.width - Theme.spacingHuge * 2
        spacing: Theme.spacingLarge

        // The header of the overview.
        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.spacing

            PaneTitle {
                Layout.fillWidth: true
                title: "Limpieza"
                subtitle: overview.model.overviewLine
                subtitleName: "overviewLine"
            }
            CleanButton {
                objectName: "rescanButton"
                text: "Analizar de nuevo"
                symbol: "arrow.clockwise"
                enabled: !overview.model.isScanning && !overview.model.isCleaning
                onClicked: overview.model.scan()
            }
            Spinner {
                visible: overview.model.isCleaning
                running: visible
                implicitWidth: 18
                implicitHeight: 18
            }
            CleanButton {
                objectName: "overviewClean"
                text: overview.model.cleanLabel
                enabled: !overview.model.isCleaning && overview.model.selectedCount > 0
                onClicked: overview.cleanRequested()
            }
        }

        CleanSummary {
            Layout.fillWidth: true
            model: overview.model
            onCleanRequested: overview.cleanRequested()
        }

        Repeater {
            // A count, not the list itself, so that the rows stay (and animate) while figures change.
            model: overview.model.groups.length

            ColumnLayout {
                id: group
                required property int index
                readonly property var heading: overview.model.groups[index]

                Layout.fillWidth: true
                Layout.topMargin: Theme.spacing
                spacing: Theme.spacing

                Text {
                    Layout.leftMargin: Theme.spacingSmall
                    text: group.heading.title
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                    font.weight: Font.DemiBold
                }
                Rectangle {
                    Layout.fillWidth: true
                    implicitHeight: rows.implicitHeight + Theme.spacing
                    radius: Theme.radiusCard
                    color: Theme.cardBackground

                    Column {
                        id: rows
                        x: Theme.spacingSmall
                        y: Theme.spacingSmall
                        width: parent.width - Theme.spacing
                        Repeater {
                            model: group.heading.categories.length
                            CategoryRow {
                                required property int index
                                width: rows.width
                                category: group.heading.categories[index]
                                toggleEnabled: !overview.model.isCleaning
                                onToggled: overview.model.toggleCategory(category.id)
                                onOpened: overview.model.open(category.id)
                                Rectangle {
                                    visible: index > 0
                                    anchors.top: parent.top
                                    anchors.left: parent.left
                                    anchors.right: parent.right
                                    anchors.leftMargin: Theme.spacingLarge + 20 + Theme.spacingLarge - 4
                                    height: 1
                                    color: Theme.separator
                                }
                            }
                        }
                    }
                }
            }
        }
    }
}
