import QtQuick
import QtQuick.Layouts
import Nubo.Models

// The left column: the product mark, one row per pane bound to the selected pane, and at its
// foot the Full Disk Access reminder (while access is missing) and the start-up disk.
Rectangle {
    id: sidebar

    required property AppState appState
    property ShellController shell: null

    color: Theme.sidebarBackground

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.spacing * 1.5
        spacing: Theme.spacing

        RowLayout {
            Layout.topMargin: Theme.spacing
            Layout.bottomMargin: Theme.spacing
            Layout.leftMargin: Theme.spacing
            spacing: Theme.spacing
            SymbolIcon { symbol: "wind"; size: 20 }
            Text {
                Layout.fillWidth: true
                text: "Nubo"
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: 17
                font.weight: Font.Bold
            }
            Loader {
                active: sidebar.shell !== null && !sidebar.shell.nativeMenus
                visible: active
                sourceComponent: AppMenuButton {
                    objectName: "appMenuButton"
                    shell: sidebar.shell
                }
            }
        }

        ListView {
            id: panes
            objectName: "paneList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 2
            interactive: false
            model: PaneListModel {}
            delegate: SidebarRow {
                required property string paneId
                objectName: "pane:" + paneId
                width: ListView.view.width
                selected: paneId === sidebar.appState.section
                badge: paneId === "map" ? sidebar.appState.mapBadge
                     : paneId === "clean" ? sidebar.appState.cleanBadge : ""
                onActivated: sidebar.appState.section = paneId
            }
        }

        FullDiskAccessCard {
            objectName: "fullDiskAccessCard"
            Layout.fillWidth: true
            visible: !sidebar.appState.hasFullDiskAccess
            appState: sidebar.appState
        }

        DiskCard {
            Layout.fillWidth: true
            appState: sidebar.appState
        }
    }
}
