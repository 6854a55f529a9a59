import QtQuick
import QtQuick.Controls
import Nubo.Models

// The context menu of a running application. Force quit only asks for confirmation (the owner
// shows it); actions the platform cannot do are left out.
Menu {
    id: menu

    property ActivityModel model
    property var app: ({})
    signal forceQuitRequested(var app)

    readonly property bool hidden: app && app.isHidden === true

    AppMenuItem {
        objectName: "menuActivate"
        available: menu.model !== null && menu.model.canActivate
        text: "Traer al frente"
        symbol: "macwindow"
        onTriggered: menu.model.activate(menu.app.pid)
    }
    AppMenuItem {
        objectName: "menuMinimize"
        available: menu.model !== null && menu.model.canMinimize
        text: "Minimizar ventanas"
        symbol: "minus"
        onTriggered: menu.model.minimize(menu.app.pid)
    }
    AppMenuItem {
        objectName: "menuHide"
        available: menu.model !== null && menu.model.canHide
        text: ActivityTexts.hideActionText(menu.hidden)
        symbol: ActivityTexts.hideSymbolName(menu.hidden)
        onTriggered: menu.hidden ? menu.model.unhide(menu.app.pid) : menu.model.hide(menu.app.pid)
    }
    AppMenuItem {
        objectName: "menuQuit"
        available: menu.model !== null
        text: "Salir"
        symbol: "xmark"
        onTriggered: menu.model.quit(menu.app.pid)
    }
    MenuSeparator {}
    AppMenuItem {
        objectName: "menuForceQuit"
        available: menu.model !== null
        text: "Forzar salida…"
        symbol: "exclamationmark.octagon"
        onTriggered: menu.forceQuitRequested(menu.app)
    }
}
