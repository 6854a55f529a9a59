import QtQuick
import QtQuick.Controls

// A small borderless button that shows one symbol, with its name as a tooltip: the row actions
// of a table. Disabled, it dims and ignores clicks like any other control.
AbstractButton {
    id: button

    property string symbol
    property int symbolSize: 14
    property color tint: Theme.textSecondary

    implicitWidth: symbolSize + Theme.spacing * 2 - 2
    implicitHeight: implicitWidth
    hoverEnabled: true
    opacity: enabled ? 1 : 0.35
    focusPolicy: Qt.NoFocus

    ToolTip.visible: hovered && text.length > 0
    ToolTip.delay: 600
    ToolTip.text: text

    contentItem: Item {
        SymbolIcon {
            anchors.centerIn: parent
            symbol: button.symbol
            size: button.symbolSize
            tint: button.tint
        }
    }
    background: Rectangle {
        radius: Theme.radiusSmall
        color: button.pressed ? Theme.selection : (button.hovered ? Theme.rowHover : "transparent")
        Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }
    }
}
