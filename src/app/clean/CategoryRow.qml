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

    readonly property color tint: Theme.tint(category.color)

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

        // What the rule found, right-aligned; a spinner stands in while it is still looking.
        // Plain items rather than a nested layout: a layout shown after being hidden keeps its
        // old width on Qt 6.4.
        Item {
            implicitWidth: Math.max(found.implicitWidth, countLabel.implicitWidth + countLabel.anchors.rightMargin, 18)
            implicitHeight: found.implicitHeight + countLabel.implicitHeight + 2

            Spinner {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: row.category.loading || row.category.cleaning
                running: visible
                width: 18
                height: 18
            }
            Text {
                id: found
                anchors.right: parent.right
                anchors.bottom: countLabel.top
                anchors.bottomMargin: 2
                visible: !row.category.loading && !row.category.cleaning && row.category.count > 0
                text: row.category.sizeText
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
            }
            Text {
                id: countLabel
                objectName: "categoryCount-" + row.category.id
                anchors.right: parent.right
                anchors.rightMargin: row.category.cleaning ? 26 : 0
                anchors.verticalCenter: parent.verticalCenter
                anchors.verticalCenterOffset: found.visible ? found.implicitHeight / 2 : 0
                visible: !row.category.loading
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
