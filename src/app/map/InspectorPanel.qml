import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// Describes the bubble under the pointer, or else the folder on show: name, size, files, the
// breakdown by kind and its largest children.
Item {
    id: panel

    required property MapModel model
    signal menuRequested(Item source, real x, real y)

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.spacingLarge
        spacing: Theme.spacingLarge

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.spacing + 4
            Rectangle {
                implicitWidth: 44
                implicitHeight: 44
                radius: 12
                color: panel.model.inspectedColor.length > 0 ? panel.model.inspectedColor : Theme.accent
                SymbolIcon {
                    anchors.centerIn: parent
                    symbol: panel.model.inspectedSymbol
                    size: 22
                    tint: "white"
                }
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2
                Text {
                    objectName: "inspectedName"
                    Layout.fillWidth: true
                    text: panel.model.inspectedName
                    elide: Text.ElideMiddle
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: 15
                    font.weight: Font.Bold
                }
                Text {
                    objectName: "inspectedCount"
                    text: panel.model.inspectedCountText
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeCaption
                }
            }
        }
        Text {
            objectName: "inspectedSize"
            text: panel.model.inspectedSizeText
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeLargeTitle
            font.weight: Font.Bold
        }
        KindBreakdown {
            objectName: "kindBreakdown"
            Layout.fillWidth: true
            segments: panel.model.breakdown
        }
        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 1
            color: Theme.separator
        }
        Text {
            text: "Lo más grande"
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeCaption
            font.weight: Font.DemiBold
            font.capitalization: Font.AllUppercase
            font.letterSpacing: 0.6
        }
        ListView {
            id: rows
            objectName: "inspectorRows"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: 2
            model: panel.model.inspectedRows
            boundsBehavior: Flickable.StopAtBounds
            delegate: InspectorRow {
                width: ListView.view.width
                mapModel: panel.model
                onMenuRequested: (x, y) => {
                    panel.model.menuForInspectedRow(index)
                    panel.menuRequested(this, x, y)
                }
            }
        }
    }
}
