import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// One running app in the panel: its badge and name, its figure in the current order, and a
// compact menu of what can be done with it.
Rectangle {
    id: row

    required property var app
    property bool canActivate: true
    property bool canHide: true
    property bool canMinimize: true
    signal activateRequested()
    signal minimizeRequested()
    signal hideRequested()
    signal unhideRequested()
    signal quitRequested()
    signal forceQuitRequested()

    implicitHeight: Theme.panelRowHeight
    radius: Theme.radiusSmall
    color: hover.hovered ? Theme.selection : "transparent"

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacing
        anchors.rightMargin: 2
        spacing: Theme.spacing

        AppIcon {
            Layout.preferredWidth: 20
            Layout.preferredHeight: 20
            source: row.app.iconSource || ""
            initial: row.app.initial || ""
            hue: row.app.hue || 0
        }
        Text {
            Layout.fillWidth: true
            text: row.app.name
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            elide: Text.ElideRight
        }
        Text {
            objectName: "appFigure"
            text: row.app.figure
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: 12
        }
        ToolButton {
            objectName: "appActions"
            implicitWidth: 24
            implicitHeight: 24
            contentItem: Item {
                SymbolIcon { anchors.centerIn: parent; symbol: "ellipsis.circle"; size: 14 }
            }
            onClicked: actions.open()

            Menu {
                id: actions
                objectName: "appActionsMenu"
                y: parent.height
                MenuItem {
                    text: "Traer al frente"
                    enabled: row.canActivate
                    onTriggered: row.activateRequested()
                }
                MenuItem {
                    text: "Minimizar ventanas"
                    enabled: row.canMinimize
                    onTriggered: row.minimizeRequested()
                }
                MenuItem {
                    text: row.app.isHidden ? "Mostrar" : "Ocultar"
                    enabled: row.canHide
                    onTriggered: row.app.isHidden ? row.unhideRequested() : row.hideRequested()
                }
                MenuItem {
                    text: "Salir"
                    onTriggered: row.quitRequested()
                }
                MenuItem {
                    objectName: "forceQuitItem"
                    text: "Forzar salida…"
                    onTriggered: row.forceQuitRequested()
                }
            }
        }
    }

    HoverHandler { id: hover }
}
