import QtQuick
import QtQuick.Layouts

// The detail area of a pane whose screen is not built yet: its symbol and title.
Item {
    id: placeholder

    property string title
    property string symbol

    ColumnLayout {
        anchors.centerIn: parent
        spacing: Theme.spacingLarge

        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            symbol: placeholder.symbol
            size: 56
            opacity: 0.6
        }
        Text {
            objectName: "paneTitle"
            Layout.alignment: Qt.AlignHCenter
            text: placeholder.title
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeLargeTitle
            font.weight: Font.Bold
        }
    }
}
