import QtQuick
import Nubo.Models

// The cleanup screen: categories grouped under their headings, their items and the clean.
Item {
    id: view

    required property AppState appState

    PanePlaceholder {
        anchors.fill: parent
        title: view.appState.sectionTitle
        symbol: view.appState.sectionSymbol
    }
}
