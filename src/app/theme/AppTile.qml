import QtQuick

// The tile that stands for an application: a rounded square in the application's own hue with
// the initial of its name.
Rectangle {
    id: tile

    property string initial
    property real hue: 0

    implicitWidth: 32
    implicitHeight: 32
    radius: Math.round(width * 0.225)
    gradient: Gradient {
        GradientStop { position: 0; color: Qt.hsla(tile.hue, 0.58, Theme.dark ? 0.56 : 0.62, 1) }
        GradientStop { position: 1; color: Qt.hsla(tile.hue, 0.64, Theme.dark ? 0.42 : 0.48, 1) }
    }

    Text {
        anchors.centerIn: parent
        text: tile.initial
        color: "white"
        font.family: Theme.fontFamily
        font.pixelSize: Math.round(tile.height * 0.5)
        font.weight: Font.Bold
        textFormat: Text.PlainText
    }
}
