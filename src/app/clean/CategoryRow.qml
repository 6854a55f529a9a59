import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// One category of the overview: the check circle that ticks all of it, its tinted icon and
// texts, what its rule found, and the way into its detail page.
Rectangle {
    id: row

    // A row of CleanModel.categories.
    required property var category
    property bool toggleEnabled: true
    signal toggled()
    signal opened()

    readonly property color tint: Theme.namedTint(category.color)

    implicitHeight: Theme.cleanRowHeight
    radius: Theme.radiusSmall
    color: hover.hovered ? Theme.selection : "transparent"
    Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }

    HoverHandler { id: hover }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacingLarge
        anchors.rightMargin: Theme.spacing
        spacing: Theme.spacingLarge - 4

        CheckCircle {
            id: check
            objectName: "categoryCheck-" + row.category.id
            // The help the circle gives: what pressing it does.
            readonly property string help: row.category.help
            mode: row.category.state === "all" ? "on" : row.category.state === "partial" ? "partial" : "off"
            enabled: row.toggleEnabled && row.category.count > 0
            opacity: enabled ? 1 : 0.4
            ToolTip.visible: checkHover.hovered && enabled
            ToolTip.delay: 600
            ToolTip.text: help
            HoverHandler { id: checkHover }
            onToggled: row.toggled()
        }

        Rectangle {
            implicitWidth: Theme.cleanIconTile
            implicitHeight: Theme.cleanIconTile
            radius: Theme.radiusSmall + 2
            color: Qt.rgba(row.tint.r, row.tint.g, row.tint.b, 0.16)
            SymbolIcon {
                anchors.centerIn: parent
                symbol: row.category.symbol
                size: 18
                tint: row.tint
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            Text {
                Layout.fillWidth: true
                text: row.category.title
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            Text {
                Layout.fillWidth: true
                text: row.category.subtitle
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                elide: Text.ElideRight
            }
        }

        BusyIndicator {
            visible: row.category.loading
            running: visible
            implicitWidth: 18
            implicitHeight: 18
        }

        ColumnLayout {
            visible: !row.category.loading
            spacing: 2
            Text {
                Layout.alignment: Qt.AlignRight
                visible: row.category.count > 0
                text: row.category.sizeText
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
            }
            Text {
                objectName: "categoryCount-" + row.category.id
                Layout.alignment: Qt.AlignRight
                text: row.category.countText
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
            }
        }

        AbstractButton {
            objectName: "categoryOpen-" + row.category.id
            implicitWidth: 28
            implicitHeight: 28
            hoverEnabled: true
            background: Rectangle {
                radius: width / 2
                color: parent.hovered ? Theme.selection : "transparent"
            }
            contentItem: Item {
                SymbolIcon {
                    anchors.centerIn: parent
                    symbol: "chevron.right"
                    size: 12
                    tint: Theme.textSecondary
                }
            }
            onClicked: row.opened()
        }
    }
}
