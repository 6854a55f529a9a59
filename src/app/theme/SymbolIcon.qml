import QtQuick

// An SF Symbol by name, drawn by the platform's symbol provider at the screen's pixel density.
Image {
    property string symbol
    property int size: 16
    // Draws the symbol in this colour; left unset, the symbol keeps its own colours.
    property color tint: "transparent"

    width: size
    height: size
    source: symbol.length === 0 ? ""
          : "image://symbol/" + symbol + (tint.a > 0 ? "?tint=" + encodeURIComponent(tint.toString()) : "")
    sourceSize: Qt.size(size * Screen.devicePixelRatio, size * Screen.devicePixelRatio)
    fillMode: Image.PreserveAspectFit
    smooth: true
}
