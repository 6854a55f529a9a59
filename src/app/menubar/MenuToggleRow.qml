import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// A panel row with a title and a switch.
Item {
    id: row

    property string title
    property bool checked: false
    signal toggled(bool on)

    implicitHeight: Theme.panelRowHeight

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacing
        anchors.rightMargin: Theme.spacingSmall
        Text {
            Layout.fillWidth: true
            text: row.title
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
        }
        Switch {
            id: toggle
            objectName: "toggle"
            checked: row.checked
            onToggled: row.toggled(checked)
            padding: 0
            spacing: 0
            Layout.preferredWidth: 32
            Layout.preferredHeight: 18
            indicator: Rectangle {
                x: 0
                y: (toggle.height - height) / 2
                implicitWidth: 32
                implicitHeight: 18
                radius: height / 2
                color: toggle.checked ? Theme.accent : Theme.badgeBackground
                Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }
                Rectangle {
                    width: parent.height - 4
                    height: width
                    radius: width / 2
                    y: 2
                    x: toggle.checked ? parent.width - width - 2 : 2
                    color: "white"
                    border.color: Theme.separator
                    Behavior on x { NumberAnimation { duration: Theme.snappyUI.duration; easing.type: Theme.snappyUI.easing } }
                }
            }
            contentItem: Item {}
            background: Item {}
        }
    }
}
