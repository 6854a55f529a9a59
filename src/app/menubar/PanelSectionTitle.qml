import QtQuick

// A small heading inside the menu-bar panel.
Text {
    color: Theme.textSecondary
    font.family: Theme.fontFamily
    font.pixelSize: Theme.fontSizeCaption
    font.weight: Font.DemiBold
}
