import QtQuick
import Nubo.Models

// The apps screen: the installed applications and, for the one chosen, what uninstalling removes.
Item {
    id: view

    required property AppState appState

    PanePlaceholder {
        anchors.fill: parent
        title: view.appState.sectionTitle
        symbol: view.appState.sectionSymbol
    }
}
