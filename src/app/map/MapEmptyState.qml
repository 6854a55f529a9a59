import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// Before the first scan: what the map is, and the two ways to start.
Item {
    id: empty

    required property MapModel model

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - Theme.spacingHuge * 2, 460)
        spacing: Theme.spacingLarge

        Rectangle {
            Layout.alignment: Qt.AlignHCenter
            width: 96
            height: 96
            radius: 48
            color: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.12)
            SymbolIcon {
                anchors.centerIn: parent
                symbol: "circle.hexagongrid.fill"
                size: 48
                tint: Theme.accent
            }
        }
        Text {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: "Descubre qué ocupa tu Mac"
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeTitle
            font.weight: Font.Bold
            wrapMode: Text.WordWrap
        }
        Text {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: "Nubo muestra tu disco como un mapa: cuanto más grande el bloque, más espacio ocupa. Haz clic en una carpeta para entrar y marca lo que quieras borrar."
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            lineHeight: 1.2
            wrapMode: Text.WordWrap
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: Theme.spacing
            spacing: Theme.spacing
            MapToolButton {
                objectName: "analyzeHome"
                text: "Analizar carpeta de inicio"
                symbol: "house"
                prominent: true
                implicitHeight: 34
                onClicked: empty.model.scanHome()
            }
            MapToolButton {
                objectName: "analyzeDisk"
                text: "Disco completo"
                symbol: "internaldrive"
                implicitHeight: 34
                onClicked: empty.model.scanDisk()
            }
        }
    }
    Shortcut {
        sequence: "Ctrl+Return"
        enabled: empty.visible
        onActivated: empty.model.scanHome()
    }
}
