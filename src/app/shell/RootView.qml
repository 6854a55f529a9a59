import QtQuick
import QtQuick.Layouts
import Nubo.Models

// The detail area: one screen per pane, in sidebar order, showing the selected one.
StackLayout {
    id: root

    required property AppState appState

    currentIndex: appState.sectionIndex

    HomeView { appState: root.appState }
    MapView { appState: root.appState }
    CleanView { appState: root.appState }
    AppsView { appState: root.appState }
    ActivityView { appState: root.appState }
    PerformanceView { appState: root.appState }
}
