import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The main window: the sidebar on the left, the selected pane on the right.
ApplicationWindow {
    id: window

    required property AppState appState

    title: "Nubo"
    width: 1280
    height: 820
    minimumWidth: 960
    minimumHeight: 620
    visible: true
    color: Theme.windowBackground

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Sidebar {
            Layout.preferredWidth: 232
            Layout.fillHeight: true
            appState: window.appState
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
}
