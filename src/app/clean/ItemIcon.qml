import QtQuick

// An item's icon: the icon of the application it belongs to when known, otherwise a folder,
// a file or a command symbol.
Item {
    id: icon

    property string symbol: "doc.fill"
    property string appInitial
    property real appHue: 0
    property string appIconSource
    property int size: 28

    implicitWidth: size
    implicitHeight: size

    AppIcon {
        anchors.fill: parent
        visible: icon.appInitial.length > 0
        source: icon.appIconSource
        initial: icon.appInitial
        hue: icon.appHue
    }
    SymbolIcon {
        anchors.centerIn: parent
        visible: icon.appInitial.length === 0
        symbol: icon.symbol
        size: Math.round(icon.size * 0.75)
        tint: symbol === "folder.fill" ? Theme.accent : Theme.textSecondary
    }
}
