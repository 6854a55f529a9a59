import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// One running application in the activity table: glyph, name (marked "Oculta" while hidden),
// processor share and memory, and the row actions; a right click asks for the context menu.
Rectangle {
    id: row

    property ActivityModel activity
    // The row's application (a row of ActivityAppList: pid, name, cpu, memory, isHidden, isActive).
    required property var app
    property int cpuWidth: 88
    property int memoryWidth: 104
    signal forceQuitRequested(var app)
    // A right click: the owner shows the context menu, which outlives the row when the table
    // refreshes under it.
    signal menuRequested(var app, real x, real y)

    implicitHeight: Theme.tableRowHeight
    radius: Theme.radiusSmall
    color: hover.hovered ? Theme.rowHover : "transparent"
    Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacing
        anchors.rightMargin: Theme.spacing
        spacing: Theme.spacing + 4

        AppIcon {
            implicitWidth: Theme.appGlyphSize
            implicitHeight: Theme.appGlyphSize
            source: row.app.iconSource || ""
            initial: row.app.initial || ""
            hue: row.app.hue || 0
        }
        Text {
            objectName: "appName"
            Layout.fillWidth: true
            Layout.minimumWidth: 60
            text: row.app.name || ""
            color: row.app.isHidden ? Theme.textSecondary : Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            font.weight: row.app.isActive ? Font.DemiBold : Font.Normal
            elide: Text.ElideRight
        }
        Rectangle {
            objectName: "hiddenTag"
            visible: row.app.isHidden === true
            implicitWidth: hiddenText.implicitWidth + Theme.spacing * 1.5
            implicitHeight: hiddenText.implicitHeight + 4
            radius: height / 2
            color: Theme.selection
            Text {
                id: hiddenText
                anchors.centerIn: parent
                text: "Oculta"
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
            }
        }
        AppActions {
            objectName: "rowActions"
            model: row.activity
            app: row.app
            opacity: hover.hovered ? 1 : 0.55
            Behavior on opacity { NumberAnimation { duration: Theme.snappyUI.duration } }
            onForceQuitRequested: (app) => row.forceQuitRequested(app)
        }
        Text {
            objectName: "appCpu"
            Layout.preferredWidth: row.cpuWidth
            Layout.minimumWidth: row.cpuWidth
            Layout.maximumWidth: row.cpuWidth
            horizontalAlignment: Text.AlignRight
            text: ActivityTexts.appCpuText(row.app.cpu || 0)
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
        }
        Text {
            objectName: "appMemory"
            Layout.preferredWidth: row.memoryWidth
            Layout.minimumWidth: row.memoryWidth
            Layout.maximumWidth: row.memoryWidth
            horizontalAlignment: Text.AlignRight
            text: ActivityTexts.bytesText(row.app.memory || 0)
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
        }
    }

    HoverHandler { id: hover }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: (point) => row.menuRequested(row.app, point.position.x, point.position.y)
    }
}
