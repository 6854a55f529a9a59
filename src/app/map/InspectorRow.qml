import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// One of the largest children: kind, name, size, and its mark (or the lock of a protected path).
Item {
    id: row

    required property MapModel mapModel
    required property int index
    required property string name
    required property string sizeText
    required property string kindColor
    required property string kindSymbol
    required property bool marked
    required property bool isProtected
    required property bool isAggregate
    required property bool canDrill
    signal menuRequested(real x, real y)

    implicitHeight: 40

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusSmall
        color: hover.hovered ? Theme.selection : "transparent"
        Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }
    }
    HoverHandler {
        id: hover
        onHoveredChanged: row.mapModel.hoverInspectedRow(hovered ? row.index : -1)
    }
    TapHandler {
        acceptedButtons: Qt.LeftButton
        onTapped: row.mapModel.openInspectedRow(row.index)
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: (point) => row.menuRequested(point.position.x, point.position.y)
    }
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacing
        anchors.rightMargin: Theme.spacing
        spacing: Theme.spacing + 2

        Rectangle {
            implicitWidth: 26
            implicitHeight: 26
            radius: 7
            color: row.kindColor
            SymbolIcon {
                anchors.centerIn: parent
                symbol: row.kindSymbol
                size: 14
                tint: "white"
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            Text {
                Layout.fillWidth: true
                text: row.name
                elide: Text.ElideMiddle
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
            }
            Text {
                text: row.sizeText
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
            }
        }
        SymbolIcon {
            objectName: "rowLock"
            visible: row.isProtected
            symbol: "lock"
            size: 15
            tint: Theme.textSecondary
            HoverHandler { id: lockHover }
            ToolTip.visible: lockHover.hovered
            ToolTip.text: "Protegido: Nubo no borra esta ruta"
        }
        CheckCircle {
            objectName: "rowCheck"
            visible: !row.isProtected && !row.isAggregate
            mode: row.marked ? "on" : "off"
            tint: Theme.red
            onToggled: row.mapModel.toggleMarkInspectedRow(row.index)
        }
    }
}
