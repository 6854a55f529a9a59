import QtQuick
import Nubo.Models

// The performance screen: what opens by itself, and the maintenance tasks.
Item {
    id: view

    required property AppState appState

    PanePlaceholder {
        anchors.fill: parent
        title: view.appState.sectionTitle
        symbol: view.appState.sectionSymbol
    }
}
