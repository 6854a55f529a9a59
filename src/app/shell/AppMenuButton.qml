import QtQuick
import QtQuick.Controls
import Nubo.Models

// The application's menu where the platform has no menu bar of its own: the map commands, the
// menu-bar panel when there is no tray to hold it, updates and quitting.
ToolButton {
    id: button

    required property ShellController shell

    implicitWidth: 28
    implicitHeight: 28
    contentItem: Item {
        SymbolIcon { anchors.centerIn: parent; symbol: "ellipsis.circle"; size: 16 }
    }
    onClicked: menu.open()

    Menu {
        id: menu
        objectName: "appMenu"
        y: button.height

        MenuItem {
            objectName: "menuRescan"
            text: "Escanear de nuevo"
            onTriggered: button.shell.rescan()
        }
        MenuItem {
            objectName: "menuGoUp"
            text: "Subir un nivel"
            enabled: button.shell.canGoUp
            onTriggered: button.shell.goUp()
        }
        MenuSeparator {}
        MenuItem {
            objectName: "menuPanel"
            text: "Mostrar el panel"
            visible: !button.shell.hasTray
            height: visible ? implicitHeight : 0
            onTriggered: button.shell.showPanel()
        }
        MenuItem {
            objectName: "menuUpdates"
            text: "Buscar actualizaciones…"
            visible: button.shell.canCheckForUpdates
            height: visible ? implicitHeight : 0
            onTriggered: button.shell.checkForUpdates()
        }
        MenuItem {
            objectName: "menuQuit"
            text: "Salir de Nubo"
            onTriggered: button.shell.quit()
        }
    }
}
