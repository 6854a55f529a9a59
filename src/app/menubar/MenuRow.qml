import QtQuick
import QtQuick.Layouts

// A full-width button row of the panel: a symbol and a title, highlighted under the pointer.
Rectangle {
    id: row

    property string symbol
    property string title
    signal triggered()

    implicitHeight: Theme.panelRowHeight
    radius: Theme.radiusSmall
    color: hover.hovered ? Theme.selection : "transparent"
    Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacing
        anchors.rightMargin: Theme.spacing
        spacing: Theme.spacing
        SymbolIcon { symbol: row.symbol; size: 15; visible: row.symbol.length > 0 }
        Text {
            Layout.fillWidth: true
            text: row.title
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            elide: Text.ElideRight
        }
    }

    HoverHandler { id: hover }
    TapHandler { onTapped: row.triggered() }
}
