import QtQuick
import QtQuick.Layouts

// The detail side before an application is chosen: what the uninstaller does.
Item {
    id: empty

    property string explanation

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - Theme.spacingHuge * 2, 420)
        spacing: Theme.spacing

        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: Theme.spacing
            symbol: "square.stack.3d.up.fill"
            size: 48
            tint: Theme.textSecondary
            opacity: 0.6
        }
        Text {
            objectName: "emptyDetailTitle"
            Layout.alignment: Qt.AlignHCenter
            text: "Selecciona una app"
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeTitle
            font.weight: Font.Bold
        }
        Text {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: empty.explanation
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            wrapMode: Text.WordWrap
            lineHeight: 1.15
        }
    }
}
