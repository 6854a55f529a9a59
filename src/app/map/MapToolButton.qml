import QtQuick
import QtQuick.Controls

// A toolbar button of the map: an icon, an optional text and a tooltip; dimmed when disabled.
AbstractButton {
    id: button

    property string symbol
    property string help
    property color tint: Theme.textPrimary
    property bool prominent: false
    // A menu button shows its chevron after the text.
    property bool symbolTrailing: false

    implicitHeight: 30
    implicitWidth: text.length > 0 ? row.implicitWidth + Theme.spacingLarge * 1.5 : 34
    hoverEnabled: true
    opacity: enabled ? 1 : 0.35
    ToolTip.visible: hovered && help.length > 0
    ToolTip.text: help
    ToolTip.delay: 600

    background: Rectangle {
        radius: Theme.radiusSmall + 1
        color: button.prominent ? Theme.accent
             : button.down ? Theme.selection
             : button.hovered ? Theme.selection : "transparent"
        border.color: button.prominent || button.hovered ? "transparent" : Theme.separator
        Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }
    }
    contentItem: Item {
        Row {
            id: row
            anchors.centerIn: parent
            layoutDirection: button.symbolTrailing ? Qt.RightToLeft : Qt.LeftToRight
            spacing: Theme.spacingSmall + 2
            SymbolIcon {
                anchors.verticalCenter: parent.verticalCenter
                symbol: button.symbol
                size: 15
                tint: button.prominent ? "white" : button.tint
                visible: button.symbol.length > 0
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: button.text
                visible: text.length > 0
                color: button.prominent ? "white" : button.tint
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: button.prominent ? Font.DemiBold : Font.Medium
            }
        }
    }
}
