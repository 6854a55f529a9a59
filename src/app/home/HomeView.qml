import QtQuick
import Nubo.Models

// The home screen: the disk at a glance, the safe clean and the recommendations.
Item {
    id: view

    required property AppState appState

    PanePlaceholder {
        anchors.fill: parent
        title: view.appState.sectionTitle
        symbol: view.appState.sectionSymbol
    }
}
