import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// A rounded push button in the screens' own look: "plain", "prominent" (accent) or
// "destructive" (red), with an optional symbol before its text. Dimmed and deaf while disabled.
AbstractButton {
    id: button

    property string symbol
    property string role: "plain"
    readonly property color fill: role === "prominent" ? Theme.accent
                                : role === "destructive" ? Theme.red : Theme.tagBackground
    readonly property color ink: role === "plain" ? Theme.textPrimary : "white"

    leftPadding: Theme.spacingLarge - 2
    rightPadding: Theme.spacingLarge - 2
    topPadding: Theme.spacingSmall + 2
    bottomPadding: Theme.spacingSmall + 2
    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: Math.max(30, contentItem.implicitHeight + topPadding + bottomPadding)
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4
    Behavior on opacity { NumberAnimation { duration: Theme.snappyUI.duration } }

    background: Rectangle {
        radius: Theme.radiusSmall + 1
        color: button.down ? Qt.darker(button.fill, 1.2)
             : button.hovered && button.enabled ? Qt.lighter(button.fill, 1.1) : button.fill
        Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }
    }

    contentItem: RowLayout {
        spacing: Theme.spacingSmall + 2
        SymbolIcon {
            visible: button.symbol.length > 0
            symbol: button.symbol
            size: 14
            tint: button.ink
        }
        Text {
            text: button.text
            color: button.ink
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            font.weight: Font.DemiBold
        }
    }
}
