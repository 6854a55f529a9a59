import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The reminder in the sidebar while Full Disk Access is missing.
Rectangle {
    id: card

    required property AppState appState

    implicitHeight: column.implicitHeight + Theme.spacingLarge * 2
    radius: Theme.radiusCard
    color: Qt.rgba(Theme.orange.r, Theme.orange.g, Theme.orange.b, Theme.dark ? 0.16 : 0.12)

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: Theme.spacingLarge
        spacing: Theme.spacing

        RowLayout {
            spacing: Theme.spacing
            SymbolIcon { symbol: "exclamationmark.lock.fill"; tint: Theme.orange; size: 16 }
            Text {
                Layout.fillWidth: true
                text: "Acceso total al disco"
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
        }
        Text {
            Layout.fillWidth: true
            text: "Necesario para ver la Papelera, Mail y datos de algunas apps."
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeCaption
            wrapMode: Text.WordWrap
        }
        RowLayout {
            spacing: Theme.spacingSmall
            ActionButton {
                objectName: "cardOpenSettings"
                small: true
                text: "Abrir Ajustes"
                onClicked: card.appState.openFullDiskAccessSettings()
            }
            ActionButton {
                objectName: "cardCheck"
                small: true
                text: "Comprobar"
                onClicked: card.appState.refreshDisk()
            }
        }
    }
}
