import QtQuick
import QtQuick.Layouts

// The title every pane opens with, at the same size on each, and under it the line that says
// what the pane holds now. `subtitleName` names that line for the tests that read it.
ColumnLayout {
    id: pane

    property string title
    property string subtitle
    property string subtitleName
    property real subtitleOpacity: 1

    spacing: 2

    Text {
        Layout.fillWidth: true
        text: pane.title
        color: Theme.textPrimary
        font.family: Theme.fontFamily
        font.pixelSize: Theme.fontSizeLargeTitle
        font.weight: Font.Bold
        elide: Text.ElideRight
    }
    Text {
        objectName: pane.subtitleName
        Layout.fillWidth: true
        visible: text.length > 0
        opacity: pane.subtitleOpacity
        Behavior on opacity { NumberAnimation { duration: Theme.snappyUI.duration } }
        text: pane.subtitle
        color: Theme.textSecondary
        font.family: Theme.fontFamily
        font.pixelSize: Theme.fontSizeBody
        elide: Text.ElideRight
    }
}
