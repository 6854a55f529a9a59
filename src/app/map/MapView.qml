import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Nubo
import Nubo.Models

// The space map: what to scan, the scan under way, the bubbles of the folder on show with its
// path, the marked items and the inspector beside them.
Item {
    id: view

    required property AppState appState
    property MapModel model: appState ? appState.map : null
    // Kept while the pane stays open; the toolbar shows and hides it.
    property bool inspectorShown: true

    readonly property bool showsMap: model && model.hasTree
    readonly property bool showsScanning: model && !model.hasTree && model.isScanning

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        // Title and toolbar
        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.spacingHuge
            Layout.rightMargin: Theme.spacingLarge
            Layout.topMargin: Theme.spacingLarge + Theme.spacing
            Layout.bottomMargin: Theme.spacing
            spacing: Theme.spacing

            PaneTitle {
                Layout.fillWidth: true
                title: "Mapa"
                subtitle: view.model ? view.model.subtitle : ""
                subtitleName: "mapSubtitle"
            }
            ScopeMenu {
                model: view.model
                onChooseFolder: folderPicker.open()
            }
            MapToolButton {
                objectName: "goUp"
                symbol: "arrow.up"
                help: "Subir un nivel"
                enabled: view.model && view.model.canGoUp && !view.model.isScanning
                onClicked: view.model.goUp()
            }
            MapToolButton {
                objectName: "rescan"
                visible: view.model && !view.model.isScanning
                symbol: "arrow.clockwise"
                help: "Volver a escanear"
                onClicked: view.model.rescan()
            }
            MapToolButton {
                objectName: "stop"
                visible: view.model && view.model.isScanning
                symbol: "stop.fill"
                help: "Detener"
                onClicked: view.model.cancelScan()
            }
            MapToolButton {
                objectName: "toggleInspector"
                symbol: "sidebar.right"
                help: "Mostrar u ocultar el inspector"
                tint: view.inspectorShown ? Theme.accent : Theme.textPrimary
                onClicked: view.inspectorShown = !view.inspectorShown
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            Item {
                Layout.fillWidth: true
                Layout.fillHeight: true

                MapEmptyState {
                    objectName: "mapEmpty"
                    anchors.fill: parent
                    visible: view.model && !view.model.hasTree && !view.model.isScanning
                    model: view.model
                }
                ScanningView {
                    objectName: "mapScanning"
                    anchors.fill: parent
                    visible: view.showsScanning
                    model: view.model
                }
                ColumnLayout {
                    anchors.fill: parent
                    visible: view.showsMap
                    spacing: 0

                    PathBar {
                        objectName: "pathBar"
                        Layout.fillWidth: true
                        Layout.leftMargin: Theme.spacingLarge + Theme.spacing
                        Layout.rightMargin: Theme.spacingLarge
                        model: view.model
                    }
                    BubbleMap {
                        id: bubbles
                        objectName: "bubbleMap"
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        model: view.model
                        frameColor: Theme.mapFrame
                        strokeColor: Theme.separator
                        markColor: Theme.red
                        hoverColor: Theme.mapHover
                        textColor: "white"
                        fontFamily: Theme.fontFamily
                        zoomDuration: Theme.zoom.duration
                        reflowDuration: Theme.reflow.duration
                        onMenuRequested: (x, y) => nodeMenu.popup(bubbles, x, y)

                        ToolTip {
                            parent: bubbles
                            x: bubbles.pointer.x + 14
                            y: bubbles.pointer.y + 18
                            visible: bubbles.toolTip.length > 0 && !nodeMenu.visible
                            delay: 500
                            text: bubbles.toolTip
                        }
                    }
                }
                // A rescan keeps the old map on screen; this says that a new one is coming.
                Rectangle {
                    anchors.top: parent.top
                    anchors.horizontalCenter: parent.horizontalCenter
                    anchors.topMargin: Theme.spacingHuge + Theme.spacingLarge
                    visible: view.model && view.model.hasTree && view.model.isScanning
                    implicitWidth: scanningNote.implicitWidth + Theme.spacingLarge * 2
                    implicitHeight: 28
                    radius: 14
                    color: Theme.cardBackground
                    border.color: Theme.separator
                    Text {
                        id: scanningNote
                        anchors.centerIn: parent
                        text: view.model ? view.model.scanningPathText : ""
                        width: Math.min(implicitWidth, 420)
                        elide: Text.ElideMiddle
                        color: Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeCaption
                    }
                }
                SelectionBar {
                    id: selection
                    objectName: "selectionBar"
                    model: view.model
                    readonly property bool shown: view.showsMap && view.model.markedCount > 0
                    anchors.horizontalCenter: parent.horizontalCenter
                    y: shown ? parent.height - height - Theme.spacingLarge : parent.height + Theme.spacing
                    opacity: shown ? 1 : 0
                    visible: opacity > 0
                    Behavior on y { NumberAnimation { duration: Theme.snappyUI.duration; easing.type: Theme.snappyUI.easing } }
                    Behavior on opacity { NumberAnimation { duration: Theme.snappyUI.duration } }
                    onDeleteRequested: confirmation.open()
                }
            }

            Rectangle {
                visible: view.inspectorShown
                Layout.preferredWidth: 1
                Layout.fillHeight: true
                color: Theme.separator
            }
            Rectangle {
                objectName: "inspector"
                visible: view.inspectorShown
                Layout.preferredWidth: view.width >= 1100 ? Theme.mapInspectorWidth : Theme.mapInspectorWidth - 40
                Layout.fillHeight: true
                color: Theme.mapInspectorBackground

                InspectorPanel {
                    objectName: "inspectorPanel"
                    anchors.fill: parent
                    visible: view.showsMap
                    model: view.model
                    onMenuRequested: (source, x, y) => nodeMenu.popup(source, x, y)
                }
                InspectorPlaceholder {
                    objectName: "inspectorPlaceholder"
                    anchors.fill: parent
                    visible: !view.showsMap
                }
            }
        }
    }

    NodeMenu {
        id: nodeMenu
        objectName: "nodeMenu"
        model: view.model
    }
    DeleteConfirmation {
        id: confirmation
        objectName: "mapConfirmation"
        count: view.model ? view.model.markedCount : 0
        size: view.model ? view.model.markedSize : 0
        onConfirmed: view.model.deleteMarked()
    }
    FolderDialog {
        id: folderPicker
        objectName: "folderPicker"
        title: "Elegir carpeta"
        acceptLabel: "Analizar"
        onAccepted: view.model.scanFolderUrl(selectedFolder)
    }
}
