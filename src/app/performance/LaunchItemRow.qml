import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// One launch agent or daemon: its owner's glyph or a gear, its name and the scope line, a lock
// when a change asks for the administrator password, "En marcha" while launchd runs it, the
// switch, and a button (or a right click) for the menu with the rarer actions.
Rectangle {
    id: row

    property var item: ({})
    signal toggleRequested(var item)
    signal menuRequested(var item, Item source, real x, real y)

    implicitHeight: Math.max(Theme.tableRowHeight + 8, texts.implicitHeight + Theme.spacing * 2)
    radius: Theme.radiusSmall
    color: hover.hovered ? Theme.rowHover : "transparent"
    Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacing
        anchors.rightMargin: Theme.spacing
        spacing: Theme.spacing + 4

        Item {
            implicitWidth: 28
            implicitHeight: 28
            AppIcon {
                anchors.fill: parent
                visible: (row.item.appURL || "").length > 0
                source: row.item.iconSource || ""
                initial: row.item.initial || ""
                hue: row.item.hue || 0
            }
            Rectangle {
                anchors.fill: parent
                visible: (row.item.appURL || "").length === 0
                radius: Math.round(width * 0.24)
                color: Theme.selection
                SymbolIcon {
                    anchors.centerIn: parent
                    symbol: "gearshape.2.fill"
                    size: 16
                    tint: Theme.textSecondary
                }
            }
        }
        ColumnLayout {
            id: texts
            Layout.fillWidth: true
            spacing: 1
            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.spacingSmall + 2
                Text {
                    objectName: "itemName"
                    Layout.fillWidth: true
                    Layout.maximumWidth: implicitWidth
                    text: row.item.name || ""
                    textFormat: Text.PlainText
                    color: row.item.isEnabled ? Theme.textPrimary : Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                    font.weight: Font.DemiBold
                    elide: Text.ElideRight
                }
                SymbolIcon {
                    objectName: "itemLock"
                    visible: row.item.needsAdmin === true
                    symbol: "lock.fill"
                    size: 11
                    tint: Theme.textSecondary
                }
                Item { Layout.fillWidth: true }
            }
            Text {
                objectName: "itemDetails"
                Layout.fillWidth: true
                text: row.item.details || ""
                textFormat: Text.PlainText
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                elide: Text.ElideMiddle
            }
        }
        Rectangle {
            objectName: "runningTag"
            visible: row.item.isLoaded === true
            implicitWidth: runningText.implicitWidth + Theme.spacing * 1.5
            implicitHeight: runningText.implicitHeight + 4
            radius: height / 2
            color: Qt.rgba(Theme.green.r, Theme.green.g, Theme.green.b, 0.16)
            Text {
                id: runningText
                anchors.centerIn: parent
                text: "En marcha"
                color: Theme.green
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                font.weight: Font.DemiBold
            }
        }
        CapsuleButton {
            objectName: "toggle"
            Layout.preferredWidth: 96
            text: PerformanceTexts.toggleActionText(row.item.isEnabled === true)
            onClicked: row.toggleRequested(row.item)
        }
        SymbolButton {
            id: more
            objectName: "itemMore"
            symbol: "ellipsis.circle"
            symbolSize: 16
            text: "Más acciones"
            onClicked: row.menuRequested(row.item, more, 0, more.height)
        }
    }

    HoverHandler { id: hover }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: (point) => row.menuRequested(row.item, row, point.position.x, point.position.y)
    }
}
