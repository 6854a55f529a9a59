import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The performance screen: what opens by itself at login, and the maintenance tasks. Its only
// state of its own is the launch item whose removal waits for confirmation. The launch items are
// read the first time the screen shows, and again on "Actualizar".
Item {
    id: view

    required property AppState appState
    property PerformanceModel model: appState ? appState.performance : null

    readonly property var items: model ? model.items : []
    readonly property bool loading: model !== null && model.isLoading
    property bool loadRequested: false

    function loadOnce() {
        if (!loadRequested && model !== null && visible) {
            loadRequested = true
            model.load()
        }
    }
    function askRemoval(item) {
        removal.item = item
        removal.open()
    }
    function showMenu(item, source, x, y) {
        const at = source.mapToItem(view, x, y)
        itemMenu.item = item
        itemMenu.popup(at.x, at.y)
    }

    // The stack of panes settles which one shows after creation, and newer Qt shows every pane
    // while it does: the question waits for the event loop, so only the shown pane loads.
    onVisibleChanged: Qt.callLater(loadOnce)
    onModelChanged: Qt.callLater(loadOnce)
    Component.onCompleted: Qt.callLater(loadOnce)

    Flickable {
        id: page
        objectName: "performancePage"
        anchors.fill: parent
        contentWidth: width
        contentHeight: column.implicitHeight + Theme.spacingHuge * 2
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: column
            x: Theme.spacingHuge
            y: Theme.spacingHuge
            width: page.width - Theme.spacingHuge * 2
            spacing: Theme.spacingLarge + Theme.spacingSmall

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.spacing
                PaneTitle {
                    Layout.fillWidth: true
                    title: "Rendimiento"
                    subtitle: PerformanceTexts.activeCountText(view.model ? view.model.enabledCount : 0)
                    subtitleName: "activeCount"
                    // Nothing is counted before the first load lands.
                    subtitleOpacity: view.model !== null && view.model.hasLoaded ? 1 : 0
                }
                Item { Layout.fillWidth: true }
                CapsuleButton {
                    objectName: "refresh"
                    Layout.alignment: Qt.AlignTop
                    enabled: view.model !== null
                    text: "Actualizar"
                    symbol: "arrow.clockwise"
                    onClicked: view.model.load()
                }
            }

            // What opens by itself
            ColumnLayout {
                Layout.fillWidth: true
                spacing: Theme.spacingSmall
                Text {
                    text: "Se abren solos"
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: 17
                    font.weight: Font.Bold
                }
                Text {
                    Layout.fillWidth: true
                    text: "Agentes y servicios que macOS arranca al iniciar sesión. Desactivar no borra nada y se puede deshacer."
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                    wrapMode: Text.WordWrap
                }
                Text {
                    objectName: "loginItemsLink"
                    text: "Ítems de inicio en Ajustes…"
                    color: Theme.link
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                    font.underline: linkHover.hovered
                    HoverHandler { id: linkHover; cursorShape: Qt.PointingHandCursor }
                    TapHandler { onTapped: if (view.model) view.model.openLoginItemsSettings() }
                }
            }
            Rectangle {
                Layout.fillWidth: true
                implicitHeight: launchList.implicitHeight + Theme.spacing * 2
                radius: Theme.radiusCard
                color: Theme.cardBackground

                ColumnLayout {
                    id: launchList
                    x: Theme.spacing
                    y: Theme.spacing
                    width: parent.width - Theme.spacing * 2
                    spacing: 0

                    RowLayout {
                        objectName: "searching"
                        visible: view.loading && view.items.length === 0
                        Layout.alignment: Qt.AlignHCenter
                        Layout.margins: Theme.spacingLarge
                        spacing: Theme.spacing
                        Spinner { running: parent.visible; implicitWidth: 20; implicitHeight: 20 }
                        Text {
                            text: "Buscando…"
                            color: Theme.textSecondary
                            font.family: Theme.fontFamily
                            font.pixelSize: Theme.fontSizeBody
                        }
                    }
                    Text {
                        objectName: "noItems"
                        visible: !view.loading && view.items.length === 0
                        Layout.alignment: Qt.AlignHCenter
                        Layout.margins: Theme.spacingLarge
                        text: "No hay agentes ni servicios que se abran solos."
                        color: Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeBody
                    }
                    Repeater {
                        model: view.items
                        delegate: ColumnLayout {
                            id: entry
                            required property var modelData
                            required property int index
                            Layout.fillWidth: true
                            spacing: 0
                            Rectangle {
                                visible: entry.index > 0
                                Layout.fillWidth: true
                                Layout.leftMargin: 48
                                Layout.preferredHeight: 1
                                color: Theme.separator
                            }
                            LaunchItemRow {
                                objectName: "launchItem-" + entry.modelData.label
                                Layout.fillWidth: true
                                item: entry.modelData
                                onToggleRequested: (item) => view.model.toggle(item.url)
                                onMenuRequested: (item, source, x, y) => view.showMenu(item, source, x, y)
                            }
                        }
                    }
                }
            }

            // Maintenance
            ColumnLayout {
                Layout.fillWidth: true
                Layout.topMargin: Theme.spacing
                spacing: Theme.spacingSmall
                Text {
                    text: "Mantenimiento"
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: 17
                    font.weight: Font.Bold
                }
                // One sentence, so that it wraps and reads as one at any width.
                Text {
                    objectName: "adminNote"
                    Layout.fillWidth: true
                    text: PerformanceTexts.adminNote
                    textFormat: Text.PlainText
                    wrapMode: Text.WordWrap
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                }
            }
            Rectangle {
                Layout.fillWidth: true
                visible: taskRows.count > 0
                implicitHeight: taskList.implicitHeight + Theme.spacing * 2
                radius: Theme.radiusCard
                color: Theme.cardBackground

                ColumnLayout {
                    id: taskList
                    x: Theme.spacing
                    y: Theme.spacing
                    width: parent.width - Theme.spacing * 2
                    spacing: 0

                    Repeater {
                        id: taskRows
                        model: view.model ? view.model.tasks : []
                        delegate: ColumnLayout {
                            id: taskEntry
                            required property var modelData
                            required property int index
                            Layout.fillWidth: true
                            spacing: 0
                            Rectangle {
                                visible: taskEntry.index > 0
                                Layout.fillWidth: true
                                Layout.leftMargin: 50
                                Layout.preferredHeight: 1
                                color: Theme.separator
                            }
                            MaintenanceRow {
                                objectName: "task-" + taskEntry.modelData.id
                                Layout.fillWidth: true
                                task: taskEntry.modelData
                                running: view.model !== null && view.model.running.indexOf(taskEntry.modelData.id) >= 0
                                cancelling: view.model !== null && view.model.cancelling.indexOf(taskEntry.modelData.id) >= 0
                                outcome: view.model ? (view.model.outcomes[taskEntry.modelData.id] || null) : null
                                extra: taskEntry.modelData.id === "snapshots" && view.model && view.model.hasLoaded
                                       ? PerformanceTexts.snapshotsText(view.model.snapshotCount) : ""
                                onRunRequested: (id) => view.model.run(id)
                                onCancelRequested: (id) => view.model.cancel(id)
                            }
                        }
                    }
                }
            }
        }
    }

    LaunchItemMenu {
        id: itemMenu
        objectName: "launchItemMenu"
        onRemoveRequested: (item) => view.askRemoval(item)
    }

    LaunchItemRemoval {
        id: removal
        objectName: "launchItemRemoval"
        onConfirmed: (item) => view.model.remove(item.url)
    }
}
