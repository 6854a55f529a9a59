import QtQuick
import Nubo.Models

// The space map: the bubbles of the scanned folder, its path, the selection and the inspector.
Item {
    id: view

    required property AppState appState

    PanePlaceholder {
        anchors.fill: parent
        title: view.appState.sectionTitle
        symbol: view.appState.sectionSymbol
    }
}
