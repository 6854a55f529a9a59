import QtQuick
import QtQuick.Layouts

// One application in the list: its tile, name, last use and, once measured, its size.
Rectangle {
    id: row

    // A map of AppsModel.visible.
    required property var app
    property bool selected: false
    signal chosen()

    implicitHeight: Theme.appsRowHeight
    radius: Theme.radiusSmall
    color: selected ? Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.16)
                    : hover.hovered ? Theme.selection : "transparent"
    Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }

    HoverHandler { id: hover }
    TapHandler { onTapped: row.chosen() }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacing
        anchors.rightMargin: Theme.spacingLarge - 4
        spacing: Theme.spacingLarge - 4

        AppIcon {
            source: row.app.iconSource
            initial: row.app.initial
            hue: row.app.hue
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            Text {
                Layout.fillWidth: true
                text: row.app.name
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
                elide: Text.ElideRight
                textFormat: Text.PlainText
                maximumLineCount: 1
            }
            Text {
                Layout.fillWidth: true
                visible: text.length > 0
                text: row.app.lastUsedText
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                elide: Text.ElideRight
            }
        }
        Text {
            text: row.app.sizeText
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeCaption
        }
    }
}
