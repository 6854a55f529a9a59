import QtQuick

// An application's badge where no icon is drawn for it: a rounded tile in a tint chosen by its
// name, carrying the name's first letter, so rows stay easy to tell apart at a glance.
Rectangle {
    id: glyph

    property string name
    property int size: Theme.appGlyphSize

    readonly property var tints: ["blue", "purple", "orange", "teal", "indigo", "green", "pink", "cyan"]
    readonly property string initial: name.length > 0 ? name.charAt(0).toUpperCase() : ""

    width: size
    height: size
    radius: Math.round(size * 0.24)
    color: Theme.tint(tints[(name.length > 0 ? name.charCodeAt(0) + name.length : 0) % tints.length])

    Text {
        anchors.centerIn: parent
        visible: glyph.initial.length > 0
        text: glyph.initial
        color: "white"
        font.family: Theme.fontFamily
        font.pixelSize: Math.round(glyph.size * 0.5)
        font.weight: Font.Bold
    }
    SymbolIcon {
        anchors.centerIn: parent
        visible: glyph.initial.length === 0
        symbol: "app"
        size: Math.round(glyph.size * 0.6)
        tint: "white"
    }
}
