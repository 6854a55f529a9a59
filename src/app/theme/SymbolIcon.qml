import QtQuick

// An SF Symbol by name, drawn by the platform's symbol provider at the screen's pixel density.
Image {
    property string symbol
    property int size: 16
    // Symbols are drawn in one colour, like text: by default the primary text colour of the
    // current appearance, so they stay visible in dark mode. A transparent tint keeps the
    // symbol's own colours.
    property color tint: Theme.textPrimary

    width: size
    height: size
    source: symbol.length === 0 ? ""
          : "image://symbol/" + symbol + (tint.a > 0 ? "?tint=" + encodeURIComponent(tint.toString()) : "")
    sourceSize: Qt.size(size * Screen.devicePixelRatio, size * Screen.devicePixelRatio)
    fillMode: Image.PreserveAspectFit
    smooth: true
}
