import QtQuick
import QtQuick.Layouts

// One node's size split among its largest children by kind, with a gray rest.
ColumnLayout {
    id: breakdown

    property var segments: []

    spacing: Theme.spacing

    Row {
        id: bar
        Layout.fillWidth: true
        Layout.preferredHeight: 10
        spacing: 2
        Repeater {
            model: breakdown.segments
            delegate: Rectangle {
                required property var modelData
                objectName: modelData.remainder ? "remainderSegment" : "kindSegment"
                width: Math.max(2, modelData.fraction * (bar.width - bar.spacing * (breakdown.segments.length - 1)))
                height: bar.height
                radius: 3
                color: modelData.remainder ? Theme.mapRemainder : modelData.color
            }
        }
    }
    Flow {
        Layout.fillWidth: true
        spacing: Theme.spacing + 2
        Repeater {
            model: breakdown.segments
            delegate: Row {
                required property var modelData
                visible: modelData.named
                spacing: Theme.spacingSmall
                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 8; height: 8; radius: 4
                    color: modelData.remainder ? "transparent" : modelData.color
                }
                Text {
                    text: modelData.label
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeCaption
                }
            }
        }
    }
}
