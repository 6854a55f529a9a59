import QtQuick
import QtQuick.Controls
import Nubo
import Nubo.Models

// The context menu of a launch item. "Eliminar" only asks for confirmation (the owner shows it).
Menu {
    id: menu

    property var item: ({})
    signal removeRequested(var item)

    AppMenuItem {
        objectName: "menuReveal"
        text: "Mostrar en Finder"
        symbol: "folder"
        onTriggered: FileActions.reveal(menu.item.url || "")
    }
    AppMenuItem {
        objectName: "menuCopyProgram"
        enabled: (menu.item.program || "").length > 0
        text: "Copiar ruta del programa"
        symbol: "doc.on.doc"
        onTriggered: FileActions.copyText(menu.item.program || "")
    }
    MenuSeparator {}
    AppMenuItem {
        objectName: "menuRemove"
        text: "Eliminar"
        symbol: "trash"
        onTriggered: menu.removeRequested(menu.item)
    }
}
