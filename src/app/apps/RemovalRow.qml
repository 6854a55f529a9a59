import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// One line of what an uninstall deletes: its tick (none for the application bundle itself, which
// is always deleted), its folder's icon and label, its path and size.
Rectangle {
    id: row

    // A map of AppsModel.removalRows.
    required property var entry
    property bool toggleEnabled: true
    signal toggled()

    implicitHeight: Theme.cleanItemRowHeight
    radius: Theme.radiusSmall
    color: hover.hovered ? Theme.selection : "transparent"

    HoverHandler { id: hover }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacingLarge - 4
        anchors.rightMargin: Theme.spacingLarge - 4
        spacing: Theme.spacingLarge - 4

        // The bundle's row keeps the circle's room empty, so that every icon lines up.
        Item {
            implicitWidth: check.implicitWidth
            implicitHeight: check.implicitHeight
            CheckCircle {
                id: check
                objectName: "removalCheck"
                anchors.fill: parent
                visible: !row.entry.locked
                mode: row.entry.ticked ? "on" : "off"
                enabled: row.toggleEnabled
                opacity: enabled ? 1 : 0.4
                onToggled: row.toggled()
            }
        }
        Rectangle {
            implicitWidth: 28
            implicitHeight: 28
            radius: Theme.radiusSmall
            color: Theme.tagBackground
            SymbolIcon {
                anchors.centerIn: parent
                symbol: row.entry.symbol
                size: 16
                tint: row.entry.locked ? Theme.accent : Theme.textSecondary
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            Text {
                Layout.fillWidth: true
                text: row.entry.label
                color: row.entry.ticked ? Theme.textPrimary : Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
                elide: Text.ElideRight
                textFormat: Text.PlainText
                maximumLineCount: 1
            }
            Text {
                Layout.fillWidth: true
                text: row.entry.detail
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                elide: Text.ElideMiddle
                textFormat: Text.PlainText
                maximumLineCount: 1
            }
        }
        Text {
            text: row.entry.sizeText
            color: row.entry.ticked ? Theme.textPrimary : Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            font.weight: Font.DemiBold
            font.strikeout: !row.entry.ticked
        }
    }
}
