import QtQuick

// A small rounded label beside an application's version ("App Store", "Abierta").
Rectangle {
    id: tag

    property string text
    property color tint: Theme.textSecondary

    implicitWidth: label.implicitWidth + Theme.spacing * 1.5
    implicitHeight: label.implicitHeight + Theme.spacingSmall
    radius: height / 2
    color: Qt.rgba(tint.r, tint.g, tint.b, 0.15)

    Text {
        id: label
        anchors.centerIn: parent
        text: tag.text
        color: tag.tint
        font.family: Theme.fontFamily
        font.pixelSize: Theme.fontSizeCaption
        font.weight: Font.DemiBold
    }
}
