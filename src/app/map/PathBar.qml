import QtQuick
import QtQuick.Controls
import Nubo.Models

// The folders from the scan's root down to the one on show; each one opens when clicked.
Flickable {
    id: bar

    required property MapModel model

    implicitHeight: 28
    contentWidth: crumbs.implicitWidth
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    // The deepest folder stays in sight when the path is longer than the bar.
    contentX: Math.max(0, contentWidth - width)

    Row {
        id: crumbs
        height: parent.height
        spacing: 2
        Repeater {
            model: bar.model ? bar.model.pathNames : []
            delegate: Row {
                required property string modelData
                required property int index
                readonly property bool last: index === bar.model.pathNames.length - 1
                height: crumbs.height
                spacing: 2
                SymbolIcon {
                    anchors.verticalCenter: parent.verticalCenter
                    visible: index > 0
                    symbol: "chevron.compact.right"
                    size: 12
                    tint: Theme.textSecondary
                }
                AbstractButton {
                    objectName: "crumb" + index
                    anchors.verticalCenter: parent.verticalCenter
                    hoverEnabled: true
                    implicitWidth: label.implicitWidth + Theme.spacing * 1.5
                    implicitHeight: 24
                    onClicked: bar.model.openAncestor(index)
                    background: Rectangle {
                        radius: Theme.radiusSmall
                        color: parent.hovered ? Theme.selection : "transparent"
                    }
                    contentItem: Text {
                        id: label
                        text: modelData
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                        color: last ? Theme.textPrimary : Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeBody
                        font.weight: last ? Font.DemiBold : Font.Normal
                    }
                }
            }
        }
    }
}
