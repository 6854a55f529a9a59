import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The start-up disk at the foot of the sidebar: how full it is, what is free, what this run freed.
Rectangle {
    id: card

    required property AppState appState

    implicitHeight: column.implicitHeight + Theme.spacingLarge * 2
    radius: Theme.radiusCard
    color: Theme.cardBackground

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: Theme.spacingLarge
        spacing: Theme.spacing

        RowLayout {
            spacing: Theme.spacing
            SymbolIcon { symbol: "internaldrive"; size: 16 }
            Text {
                text: card.appState.diskName
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
            }
        }
        UsageBar {
            Layout.fillWidth: true
            value: card.appState.diskFraction
            tone: card.appState.diskTone
        }
        Text {
            Layout.fillWidth: true
            text: card.appState.diskLine
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeCaption
            wrapMode: Text.WordWrap
        }
        Text {
            objectName: "freedToday"
            Layout.fillWidth: true
            visible: text.length > 0
            text: card.appState.freedTodayLine
            color: Theme.green
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeCaption
            font.weight: Font.DemiBold
        }
    }
}
