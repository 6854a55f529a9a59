import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// A bordered push button with an optional symbol, drawn the same in every style so the toolbars
// and rows of the activity and performance screens match. Disabled, it dims and ignores clicks.
AbstractButton {
    id: button

    property string symbol
    property string help

    implicitWidth: Math.max(64, content.implicitWidth + Theme.spacingLarge * 1.5)
    implicitHeight: 28
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    opacity: enabled ? 1 : 0.45
    Behavior on opacity { NumberAnimation { duration: Theme.snappyUI.duration } }

    ToolTip.visible: hovered && help.length > 0
    ToolTip.delay: 600
    ToolTip.text: help

    contentItem: Item {
        implicitWidth: content.implicitWidth
        implicitHeight: content.implicitHeight
        RowLayout {
            id: content
            anchors.centerIn: parent
            spacing: Theme.spacingSmall + 2
            SymbolIcon {
                visible: button.symbol.length > 0
                symbol: button.symbol
                size: 13
                tint: Theme.textPrimary
            }
            Text {
                text: button.text
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
            }
        }
    }
    background: Rectangle {
        radius: Theme.radiusSmall + 1
        color: button.pressed ? Theme.selection : (button.hovered ? Theme.rowHover : Theme.windowBackground)
        border.color: button.visualFocus ? Theme.accent : Theme.separator
        Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }
    }
}
