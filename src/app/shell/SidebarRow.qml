import QtQuick
import QtQuick.Layouts

// One pane in the sidebar: symbol and title, highlighted while it is the selected pane.
Rectangle {
    id: row

    required property string title
    required property string symbol
    property bool selected: false
    // Shown in a capsule at the trailing edge; empty shows nothing.
    property string badge: ""
    signal activated()

    implicitHeight: 32
    radius: Theme.radiusSmall
    color: selected ? Theme.selection : (hover.hovered ? Qt.rgba(Theme.selection.r, Theme.selection.g,
                                                                 Theme.selection.b, Theme.selection.a / 2)
                                                      : "transparent")
    Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacing
        anchors.rightMargin: Theme.spacing
        spacing: Theme.spacing

        SymbolIcon {
            symbol: row.symbol
            size: 16
            opacity: row.selected ? 1.0 : 0.8
        }
        Text {
            Layout.fillWidth: true
            text: row.title
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            font.weight: row.selected ? Font.DemiBold : Font.Normal
            elide: Text.ElideRight
        }
        Rectangle {
            objectName: "badge"
            visible: row.badge.length > 0
            implicitWidth: Math.max(height, badgeText.implicitWidth + Theme.spacing * 1.5)
            implicitHeight: 18
            radius: height / 2
            color: Theme.badgeBackground
            Text {
                id: badgeText
                anchors.centerIn: parent
                text: row.badge
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                font.weight: Font.DemiBold
            }
        }
    }

    HoverHandler { id: hover }
    TapHandler { onTapped: row.activated() }
}
