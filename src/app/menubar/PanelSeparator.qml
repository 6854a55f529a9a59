import QtQuick
import QtQuick.Layouts

// A hairline between the panel's groups.
Rectangle {
    Layout.fillWidth: true
    Layout.leftMargin: Theme.spacing
    Layout.rightMargin: Theme.spacing
    implicitHeight: 1
    color: Theme.separator
}
