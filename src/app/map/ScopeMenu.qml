import QtQuick
import QtQuick.Controls
import Nubo.Models

// What to scan: the home folder, the whole disk or a folder of the user's choice.
MapToolButton {
    id: scope

    required property MapModel model
    signal chooseFolder()

    objectName: "scopeMenu"
    text: model ? model.scopeLabel : ""
    symbol: "chevron.down"
    symbolTrailing: true
    help: "Qué analizar"
    onClicked: menu.open()

    Menu {
        id: menu
        y: scope.height + Theme.spacingSmall
        MenuItem {
            objectName: "scopeHome"
            text: "Carpeta de inicio"
            icon.source: "image://symbol/house"
            onTriggered: scope.model.scanHome()
        }
        MenuItem {
            objectName: "scopeDisk"
            text: "Disco completo"
            icon.source: "image://symbol/internaldrive"
            onTriggered: scope.model.scanDisk()
        }
        MenuItem {
            objectName: "scopeFolder"
            text: "Elegir carpeta…"
            icon.source: "image://symbol/folder"
            onTriggered: scope.chooseFolder()
        }
    }
}
