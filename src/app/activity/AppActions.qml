import QtQuick
import QtQuick.Layouts
import Nubo.Models

// The actions on one running application, as small buttons: minimise, hide or show, quit, and
// force quit, which only asks for confirmation (the owner shows it). Actions the platform cannot
// do are left out. `compact` draws them smaller, for the menu-bar panel.
RowLayout {
    id: actions

    property ActivityModel model
    property var app: ({})
    property bool compact: false
    signal forceQuitRequested(var app)

    readonly property int symbolSize: compact ? 11 : 14
    readonly property bool hidden: app && app.isHidden === true

    spacing: compact ? 0 : 2

    SymbolButton {
        objectName: "minimizeAction"
        visible: actions.model !== null && actions.model.canMinimize
        symbol: "minus"
        symbolSize: actions.symbolSize
        text: "Minimizar"
        onClicked: actions.model.minimize(actions.app.pid)
    }
    SymbolButton {
        objectName: "hideAction"
        visible: actions.model !== null && actions.model.canHide
        symbol: ActivityTexts.hideSymbolName(actions.hidden)
        symbolSize: actions.symbolSize
        text: ActivityTexts.hideActionText(actions.hidden)
        onClicked: actions.hidden ? actions.model.unhide(actions.app.pid) : actions.model.hide(actions.app.pid)
    }
    SymbolButton {
        objectName: "quitAction"
        visible: actions.model !== null
        symbol: "xmark"
        symbolSize: actions.symbolSize
        text: "Salir"
        onClicked: actions.model.quit(actions.app.pid)
    }
    SymbolButton {
        objectName: "forceQuitAction"
        visible: actions.model !== null
        symbol: "exclamationmark.octagon"
        symbolSize: actions.symbolSize
        tint: Theme.red
        text: "Forzar salida"
        onClicked: actions.forceQuitRequested(actions.app)
    }
}
