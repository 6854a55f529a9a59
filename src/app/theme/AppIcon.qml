import QtQuick
import QtQuick.Window

// An application's icon as the system draws it. The letter tile in the application's own hue
// stands in while the picture loads, and stays where the system has none (the icon provider's
// single pixel).
Item {
    id: icon

    property string source
    property string initial
    property real hue: 0
    readonly property bool drawn: picture.status === Image.Ready && picture.implicitWidth > 1

    implicitWidth: 32
    implicitHeight: 32

    AppTile {
        anchors.fill: parent
        visible: !icon.drawn
        initial: icon.initial
        hue: icon.hue
    }
    Image {
        id: picture
        objectName: "appIconPicture"
        anchors.fill: parent
        visible: icon.drawn
        source: icon.source
        sourceSize: Qt.size(Math.ceil(icon.width * Screen.devicePixelRatio),
                            Math.ceil(icon.height * Screen.devicePixelRatio))
        asynchronous: true
        fillMode: Image.PreserveAspectFit
        smooth: true
    }
}
