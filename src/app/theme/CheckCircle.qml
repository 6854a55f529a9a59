import QtQuick

// A round check box with three states: "off" (an empty ring), "partial" (a minus, some of a
// group chosen) and "on" (a check mark), filled with `tint` when not off.
Item {
    id: check

    property string mode: "off"
    property color tint: Theme.accent
    signal toggled()

    implicitWidth: 20
    implicitHeight: 20

    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: check.mode === "off" ? "transparent" : check.tint
        border.width: check.mode === "off" ? 1.5 : 0
        border.color: Theme.textSecondary
        Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }
    }
    SymbolIcon {
        anchors.centerIn: parent
        size: Math.round(check.width * 0.6)
        symbol: check.mode === "on" ? "checkmark" : check.mode === "partial" ? "minus" : ""
        tint: "white"
        scale: check.mode === "off" ? 0.4 : 1
        opacity: check.mode === "off" ? 0 : 1
        Behavior on scale { NumberAnimation { duration: Theme.snappyUI.duration; easing.type: Easing.OutBack } }
        Behavior on opacity { NumberAnimation { duration: Theme.snappyUI.duration } }
    }
    // Takes the press for itself, so a row that opens on a tap does not open too.
    TapHandler {
        gesturePolicy: TapHandler.WithinBounds
        onTapped: check.toggled()
    }
}
