import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The one-click clean of the categories that regenerate by themselves; the button names its size.
Rectangle {
    id: row

    required property HomeSummary summary

    implicitHeight: layout.implicitHeight + Theme.spacingLarge * 2
    radius: Theme.radiusCard
    color: Theme.cardBackground

    RowLayout {
        id: layout
        anchors.fill: parent
        anchors.margins: Theme.spacingLarge
        spacing: Theme.spacingLarge

        Rectangle {
            Layout.preferredWidth: Theme.iconTile
            Layout.preferredHeight: Theme.iconTile
            radius: Theme.radiusSmall + 2
            color: Theme.accent
            SymbolIcon {
                anchors.centerIn: parent
                symbol: "bubbles.and.sparkles.fill"
                tint: "white"
                size: 20
            }
        }
        Text {
            Layout.fillWidth: true
            text: row.summary.safeExplanation
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            wrapMode: Text.WordWrap
        }
        ActionButton {
            objectName: "safeCleanButton"
            text: row.summary.safeButton
            prominent: true
            enabled: row.summary.canCleanSafe
            onClicked: row.summary.cleanSafe()
        }
    }
}
