import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// A segmented control: one segment per label, the current one raised on a sunken track.
Rectangle {
    id: picker

    property var labels: []
    property string current
    signal chosen(string label)

    implicitWidth: segments.implicitWidth + 4
    implicitHeight: 26
    radius: Theme.radiusSmall + 1
    color: Theme.selection

    RowLayout {
        id: segments
        anchors.fill: parent
        anchors.margins: 2
        spacing: 0

        Repeater {
            model: picker.labels
            delegate: AbstractButton {
                id: segment
                required property string modelData
                readonly property bool selected: modelData === picker.current

                objectName: "segment-" + modelData
                Layout.fillHeight: true
                implicitWidth: Math.max(64, label.implicitWidth + Theme.spacingLarge * 2)
                focusPolicy: Qt.NoFocus
                text: modelData
                onClicked: picker.chosen(modelData)

                background: Rectangle {
                    radius: Theme.radiusSmall
                    color: segment.selected ? Theme.windowBackground : "transparent"
                    border.color: segment.selected ? Theme.separator : "transparent"
                    Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }
                }
                contentItem: Text {
                    id: label
                    text: segment.text
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody - 1
                    font.weight: segment.selected ? Font.DemiBold : Font.Normal
                }
            }
        }
    }
}
