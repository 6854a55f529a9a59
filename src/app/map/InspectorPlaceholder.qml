import QtQuick
import QtQuick.Layouts

// The inspector before anything was scanned.
Item {
    ColumnLayout {
        anchors.centerIn: parent
        spacing: Theme.spacing
        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            symbol: "info.circle"
            size: 28
            tint: Theme.textSecondary
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: "Sin análisis"
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
        }
    }
}
