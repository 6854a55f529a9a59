import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The top card of the summary: the disk ring beside what the last analysis found, or, before the
// first analysis, what Nubo looks at and the button that starts it.
Rectangle {
    id: header

    required property HomeSummary summary

    implicitHeight: Math.max(ring.implicitHeight, column.implicitHeight) + Theme.spacingHuge * 2
    radius: Theme.radiusCard
    color: Theme.cardBackground

    RowLayout {
        anchors.fill: parent
        anchors.margins: Theme.spacingHuge
        spacing: Theme.spacingHuge

        DiskRing {
            id: ring
            Layout.alignment: Qt.AlignVCenter
            value: header.summary.diskFraction
            tone: header.summary.diskTone
            percentText: header.summary.diskPercentText
        }

        ColumnLayout {
            id: column
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignVCenter
            spacing: Theme.spacing

            // Before the first analysis.
            Text {
                objectName: "introduction"
                visible: !header.summary.hasScanned
                Layout.fillWidth: true
                text: header.summary.introduction
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: 15
                wrapMode: Text.WordWrap
                lineHeight: 1.15
            }
            ActionButton {
                objectName: "analyzeButton"
                visible: !header.summary.hasScanned
                Layout.topMargin: Theme.spacingSmall
                text: "Analizar"
                prominent: true
                onClicked: header.summary.analyze()
            }

            // Once analysed.
            RowLayout {
                visible: header.summary.hasScanned
                spacing: Theme.spacing
                Text {
                    objectName: "headline"
                    text: header.summary.headline
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeTitle
                    font.weight: Font.Bold
                }
                Spinner {
                    visible: header.summary.isAnalyzing
                    running: visible
                    Layout.preferredWidth: 22
                    Layout.preferredHeight: 22
                }
            }
            Text {
                objectName: "homeDiskLine"
                Layout.fillWidth: true
                text: header.summary.diskLine
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                elide: Text.ElideRight
            }
            Text {
                visible: header.summary.hasScanned
                Layout.fillWidth: true
                text: header.summary.zonesLine
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
            }
            Text {
                objectName: "safeShare"
                visible: header.summary.hasScanned && !header.summary.isAnalyzing
                Layout.fillWidth: true
                text: header.summary.safeShare
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                wrapMode: Text.WordWrap
            }
        }
    }
}
