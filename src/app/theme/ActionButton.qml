import QtQuick
import QtQuick.Controls

// The push button every screen uses: plain (a quiet card-coloured capsule), prominent (filled with
// the accent, for the one action a view leads to) or destructive (filled red, for deletions).
Button {
    id: button

    property bool prominent: false
    property bool destructive: false
    property bool small: false

    readonly property bool filled: prominent || destructive
    readonly property color fill: destructive ? Theme.red : Theme.accent

    implicitHeight: small ? 24 : 30
    leftPadding: small ? Theme.spacing * 1.25 : Theme.spacingLarge
    rightPadding: leftPadding
    topPadding: 0
    bottomPadding: 0
    font.family: Theme.fontFamily
    font.pixelSize: small ? Theme.fontSizeCaption : Theme.fontSizeBody
    font.weight: filled ? Font.DemiBold : Font.Medium
    hoverEnabled: true

    contentItem: Text {
        text: button.text
        font: button.font
        color: button.filled ? "white" : Theme.textPrimary
        opacity: button.enabled ? 1 : 0.4
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }

    background: Rectangle {
        radius: button.small ? 6 : 8
        color: button.filled
               ? (button.enabled ? (button.down ? Qt.darker(button.fill, 1.15) : button.hovered ? Qt.lighter(button.fill, 1.08) : button.fill)
                                 : Qt.rgba(button.fill.r, button.fill.g, button.fill.b, 0.35))
               : (button.down ? Theme.selection : Theme.dark ? Qt.rgba(1, 1, 1, button.hovered ? 0.14 : 0.10)
                                                             : (button.hovered ? "#F0F0F2" : "#FFFFFF"))
        border.width: button.filled ? 0 : 1
        border.color: Theme.separator
        Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }
    }
}
