import QtQuick
import QtQuick.Layouts

// One figure of the activity screen on a card: a symbol and a caption, the value in large type
// and, where the figure is a share of something, a bar under it.
Rectangle {
    id: tile

    property string title
    property string symbol
    property color tint: Theme.accent
    property string value
    // Below 0 the tile has no bar.
    property real fraction: -1
    property string tone: "accent"

    implicitHeight: column.implicitHeight + Theme.spacingLarge * 2
    radius: Theme.radiusCard
    color: Theme.cardBackground

    ColumnLayout {
        id: column
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: Theme.spacingLarge
        spacing: Theme.spacing

        RowLayout {
            spacing: Theme.spacing - 2
            SymbolIcon { symbol: tile.symbol; size: 14; tint: tile.tint }
            Text {
                Layout.fillWidth: true
                text: tile.title
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
        }
        Text {
            objectName: "statValue"
            Layout.fillWidth: true
            text: tile.value
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.statValueSize
            font.weight: Font.Bold
            // A long figure on a narrow window shrinks before it is cut.
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Theme.fontSizeBody + 2
            elide: Text.ElideRight
        }
        UsageBar {
            Layout.fillWidth: true
            visible: tile.fraction >= 0
            value: Math.max(0, tile.fraction)
            tone: tile.tone
        }
    }
}
