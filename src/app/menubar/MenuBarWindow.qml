import QtQuick
import QtQuick.Controls
import Nubo.Models

// The frameless window that holds the menu-bar panel. It refreshes the disk figures each time it
// appears and goes away when the user clicks elsewhere, like the system's own menu-bar panels.
Window {
    id: window

    required property AppState appState
    property ActivityModel activity: appState ? appState.activity : null
    property ShellController shell: null

    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    color: "transparent"
    width: panel.implicitWidth
    height: panel.implicitHeight

    onVisibleChanged: if (visible) appState.refreshDisk()
    onActiveChanged: if (!active && visible) hide()

    MenuBarPanel {
        id: panel
        objectName: "menuBarPanel"
        anchors.fill: parent
        appState: window.appState
        activity: window.activity
        shell: window.shell
        onDismissed: window.hide()
    }
}
