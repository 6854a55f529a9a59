import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The main window: the sidebar on the left, the selected pane on the right, the toast of the
// last deletion floating over the pane and the Full Disk Access guidance as a sheet.
ApplicationWindow {
    id: window

    required property AppState appState
    // The menu commands and the window's place in the desktop; absent in views tested alone.
    property ShellController shell: null

    title: "Nubo"
    width: 1280
    height: 820
    minimumWidth: 960
    minimumHeight: 620
    visible: true
    color: Theme.windowBackground

    // The map commands where the platform's menu bar does not carry them ("Ctrl" is the Command
    // key on a Mac).
    Shortcut {
        sequence: "Ctrl+R"
        enabled: window.shell !== null && !window.shell.nativeMenus
        onActivated: window.shell.rescan()
    }
    Shortcut {
        sequence: "Ctrl+Up"
        enabled: window.shell !== null && !window.shell.nativeMenus
        onActivated: window.shell.goUp()
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Sidebar {
            Layout.preferredWidth: Theme.sidebarWidth
            Layout.fillHeight: true
            appState: window.appState
            shell: window.shell
        }
        Rectangle {
            Layout.preferredWidth: 1
            Layout.fillHeight: true
            color: Theme.separator
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            RootView {
                anchors.fill: parent
                appState: window.appState
            }

            ToastView {
                id: toastView
                objectName: "toast"
                appState: window.appState
                anchors.horizontalCenter: parent.horizontalCenter
                y: window.appState.hasToast ? parent.height - height - Theme.spacingHuge : parent.height
                opacity: window.appState.hasToast ? 1 : 0
                visible: opacity > 0
                Behavior on y { NumberAnimation { duration: Theme.emphasis.duration; easing.type: Theme.emphasis.easing } }
                Behavior on opacity { NumberAnimation { duration: Theme.emphasis.duration } }
            }
        }
    }

    PermissionSheet {
        objectName: "permissionSheet"
        appState: window.appState
    }
}
