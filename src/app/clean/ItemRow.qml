import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// One item of a category's detail page: its check circle, icon, texts, size and the button that
// shows it in the file browser.
Rectangle {
    id: row

    // An item map of CleanModel.detail.items.
    required property var entry
    property bool toggleEnabled: true
    signal toggled()
    signal revealed()

    implicitHeight: Theme.cleanItemRowHeight + (entry.subtitle.length > 0 ? 14 : 0)
    radius: Theme.radiusSmall
    color: hover.hovered ? Theme.selection : "transparent"

    HoverHandler { id: hover }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacingLarge
        anchors.rightMargin: Theme.spacing
        spacing: Theme.spacingLarge - 4

        CheckCircle {
            objectName: "itemCheck"
            mode: row.entry.selected ? "on" : "off"
            enabled: row.toggleEnabled
            opacity: enabled ? 1 : 0.4
            onToggled: row.toggled()
        }

        ItemIcon {
            symbol: row.entry.symbol
            appInitial: row.entry.appInitial
            appHue: row.entry.appHue
            appIconSource: row.entry.appIconSource
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            Text {
                Layout.fillWidth: true
                text: row.entry.name
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
                elide: Text.ElideMiddle
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
            Text {
                Layout.fillWidth: true
                visible: row.entry.subtitle.length > 0
                text: row.entry.subtitle
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                font.italic: true
                elide: Text.ElideRight
                textFormat: Text.PlainText
                maximumLineCount: 1
            }
        }

        Text {
            text: row.entry.sizeText
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            font.weight: Font.DemiBold
        }

        AbstractButton {
            objectName: "revealButton"
            implicitWidth: 28
            implicitHeight: 28
            hoverEnabled: true
            enabled: row.entry.canReveal
            opacity: enabled ? 1 : 0.3
            ToolTip.visible: hovered
            ToolTip.delay: 600
            ToolTip.text: "Mostrar en Finder"
            background: Rectangle {
                radius: width / 2
                color: parent.hovered ? Theme.selection : "transparent"
            }
            contentItem: Item {
                SymbolIcon {
                    anchors.centerIn: parent
                    symbol: "magnifyingglass"
                    size: 14
                    tint: Theme.textSecondary
                }
            }
            onClicked: row.revealed()
        }
    }
}
