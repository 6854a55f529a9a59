import QtQuick
import QtQuick.Controls
import Nubo
import Nubo.Models

// The actions for one node (the model's menu node): open it, show it in the file manager, open
// it with its app, copy its path, mark or unmark it; a protected node says so and offers nothing
// that deletes.
Menu {
    id: menu

    required property MapModel model

    width: 300

    component Entry: MenuItem {
        height: visible ? implicitHeight : 0
    }

    Entry {
        objectName: "menuOpen"
        text: "Abrir"
        visible: menu.model.menuCanOpen
        onTriggered: menu.model.menuOpen()
    }
    Entry {
        objectName: "menuReveal"
        text: "Mostrar en Finder"
        icon.source: "image://symbol/finder"
        onTriggered: menu.model.menuReveal()
    }
    Entry {
        objectName: "menuOpenWith"
        text: "Abrir con la app predeterminada"
        icon.source: "image://symbol/arrow.up.forward.app"
        onTriggered: menu.model.menuOpenWithDefaultApp()
    }
    Entry {
        objectName: "menuCopy"
        text: "Copiar ruta"
        icon.source: "image://symbol/doc.on.doc"
        onTriggered: PathClipboard.copy(menu.model.menuPath)
    }
    MenuSeparator {}
    Entry {
        objectName: "menuMark"
        text: menu.model.menuIsMarked ? "Desmarcar" : "Marcar para eliminar"
        icon.source: menu.model.menuIsMarked ? "image://symbol/minus.circle" : "image://symbol/checkmark.circle"
        visible: !menu.model.menuIsProtected
        enabled: menu.model.menuCanMark
        onTriggered: menu.model.menuToggleMark()
    }
    Entry {
        objectName: "menuProtected"
        text: "Protegido"
        icon.source: "image://symbol/lock"
        visible: menu.model.menuIsProtected
        enabled: false
    }
}
