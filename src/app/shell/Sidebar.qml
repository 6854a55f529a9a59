import QtQuick
import QtQuick.Layouts
import Nubo.Models

// The left column: the product mark and one row per pane, bound to the selected pane.
Rectangle {
    id: sidebar

    required property AppState appState

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
                text: "Nubo"
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: 17
                font.weight: Font.Bold
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
                width: ListView.view.width
                selected: paneId === sidebar.appState.section
                onActivated: sidebar.appState.section = paneId
            }
        }

        DiskCard {
            Layout.fillWidth: true
            appState: sidebar.appState
        }
    }
}
