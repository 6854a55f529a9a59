import QtQuick
import QtQuick.Layouts
import Nubo.Models

// The card under the header: how far the scan has come, or how much the selection frees, with
// the clean button, which reads "Cancelar" while a clean runs.
Rectangle {
    id: summary

    required property CleanModel model
    signal cleanRequested()

    implicitHeight: content.implicitHeight + Theme.spacingHuge * 2
    radius: Theme.radiusCard
    color: Theme.cardBackground

    RowLayout {
        id: content
        anchors.fill: parent
        anchors.margins: Theme.spacingHuge
        spacing: Theme.spacingHuge

        Rectangle {
            implicitWidth: 56
            implicitHeight: 56
            radius: 28
            color: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.14)
            SymbolIcon {
                anchors.centerIn: parent
                symbol: "bubbles.and.sparkles.fill"
                size: 28
                tint: Theme.accent
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Theme.spacingSmall

            Text {
                objectName: "summaryHeading"
                Layout.fillWidth: true
                text: summary.model.summaryHeading
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
            }
            Text {
                objectName: "summaryFigure"
                Layout.fillWidth: true
                visible: !summary.model.isScanning
                text: summary.model.totalSelectedText
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: 30
                font.weight: Font.Bold
            }
            Text {
                objectName: "summaryLine"
                Layout.fillWidth: true
                text: summary.model.isScanning ? summary.model.progressLine : summary.model.selectionLine
                color: summary.model.isScanning ? Theme.textPrimary : Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: summary.model.isScanning ? 17 : Theme.fontSizeBody
                font.weight: summary.model.isScanning ? Font.DemiBold : Font.Normal
            }
            Text {
                objectName: "summaryCancelling"
                Layout.fillWidth: true
                visible: summary.model.isCancelling
                text: Texts.cancellingLine + " " + Texts.promptNote
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                wrapMode: Text.WordWrap
            }
            UsageBar {
                visible: summary.model.isScanning
                Layout.fillWidth: true
                Layout.maximumWidth: 360
                Layout.topMargin: Theme.spacingSmall
                value: summary.model.scanProgress
            }
        }

        CleanButton {
            objectName: "summaryClean"
            text: summary.model.isCleaning ? Texts.cancelLabel : "Limpiar"
            role: summary.model.isCleaning ? "plain" : "prominent"
            implicitHeight: 36
            enabled: summary.model.isCleaning ? !summary.model.isCancelling : summary.model.selectedCount > 0
            onClicked: summary.model.isCleaning ? summary.model.cancelClean() : summary.cleanRequested()
        }
    }
}
