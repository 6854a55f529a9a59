import QtQuick
import QtQuick.Layouts
import Nubo.Models

// The report of the last deletion, floating at the foot of the detail area.
Rectangle {
    id: toast

    required property AppState appState
    // The last toast's texts stay while the box slides away, so it never leaves empty.
    property string headline: ""
    property string detail: ""
    property string symbol: ""
    property bool hasFailures: false

    function remember() {
        if (!appState.hasToast)
            return
        headline = appState.toastHeadline
        detail = appState.toastDetail
        symbol = appState.toastSymbol
        hasFailures = appState.toastHasFailures
    }
    Component.onCompleted: remember()

    implicitWidth: row.implicitWidth + Theme.spacingLarge * 2
    implicitHeight: row.implicitHeight + Theme.spacing * 1.5 * 2
    radius: Theme.radiusCard
    color: Theme.cardBackground
    border.color: Theme.separator

    RowLayout {
        id: row
        anchors.centerIn: parent
        spacing: Theme.spacing * 1.5

        SymbolIcon {
            id: icon
            symbol: toast.symbol
            tint: toast.hasFailures ? Theme.orange : Theme.green
            size: 22
        }
        ColumnLayout {
            spacing: 2
            Text {
                text: toast.headline
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
            }
            Text {
                visible: text.length > 0
                text: toast.detail
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
            }
        }
    }

    TapHandler { onTapped: toast.appState.dismissToast() }

    // The icon bounces once for each new toast.
    SequentialAnimation {
        id: bounce
        NumberAnimation { target: icon; property: "scale"; to: 1.25; duration: Theme.emphasis.duration / 2; easing.type: Easing.OutQuad }
        NumberAnimation { target: icon; property: "scale"; to: 1.0; duration: Theme.emphasis.duration / 2; easing.type: Theme.emphasis.easing }
    }
    Connections {
        target: toast.appState
        function onToastChanged() {
            if (!toast.appState.hasToast)
                return
            toast.remember()
            bounce.restart()
        }
    }
}
