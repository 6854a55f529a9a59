import QtQuick
import Nubo.Models

// The activity screen: what the running applications use now, and actions on them.
Item {
    id: view

    required property AppState appState

    PanePlaceholder {
        anchors.fill: parent
        title: view.appState.sectionTitle
        symbol: view.appState.sectionSymbol
    }
}
