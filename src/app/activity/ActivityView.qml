import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The activity screen: what the running applications use now, and actions on them. Its only
// state of its own is the application whose force quit waits for confirmation.
Item {
    id: view

    required property AppState appState
    property ActivityModel model: appState ? appState.activity : null

    readonly property var apps: model ? model.sorted : []
    // Until the first sample lands the figures are unknown, not zero.
    readonly property bool sampled: model !== null && model.hasSampled
    readonly property int cpuWidth: 80
    readonly property int memoryWidth: 96

    function askForceQuit(app) {
        forceQuit.app = app
        forceQuit.open()
    }
    function showMenu(app, row, x, y) {
        const at = row.mapToItem(view, x, y)
        appMenu.app = app
        appMenu.popup(at.x, at.y)
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.spacingHuge
        spacing: Theme.spacingLarge + Theme.spacingSmall

        PaneTitle {
            Layout.fillWidth: true
            title: "Actividad"
            subtitle: "Lo que más consume ahora"
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: false
            spacing: Theme.spacingLarge

            StatTile {
                objectName: "cpuTile"
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                title: "CPU"
                symbol: "cpu"
                tint: Theme.tint("blue")
                value: view.sampled ? ActivityTexts.totalCpuText(view.model.totalCPU) : "—"
            }
            StatTile {
                objectName: "memoryTile"
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                title: "Memoria"
                symbol: "memorychip"
                tint: Theme.tint("purple")
                value: view.sampled ? ActivityTexts.memoryText(view.model.memoryUsed, view.model.memoryTotal) : "—"
                fraction: view.model ? ActivityTexts.memoryFractionOf(view.model.memoryUsed, view.model.memoryTotal) : 0
                tone: view.model ? ActivityTexts.memoryToneOf(view.model.memoryUsed, view.model.memoryTotal) : "accent"
            }
            StatTile {
                objectName: "appsTile"
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                title: "Apps abiertas"
                symbol: "square.stack.3d.up.fill"
                tint: Theme.tint("orange")
                value: view.sampled ? view.apps.length : "—"
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.spacing

            Text {
                text: "Ordenar"
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
            }
            SegmentedPicker {
                objectName: "sortPicker"
                enabled: view.model !== null
                labels: view.model ? view.model.sortLabels : []
                current: view.model ? view.model.sort : ""
                onChosen: (label) => view.model.sort = label
            }
            Item { Layout.fillWidth: true }
            CapsuleButton {
                objectName: "minimizeAll"
                visible: view.model !== null && view.model.canMinimize
                text: "Minimizar todo"
                symbol: "minus"
                help: "Minimizar las ventanas de todas las apps"
                onClicked: view.model.minimizeAll()
            }
            CapsuleButton {
                objectName: "hideAll"
                visible: view.model !== null && view.model.canHide
                text: "Ocultar todo"
                symbol: "eye.slash"
                help: "Ocultar todas las apps"
                onClicked: view.model.hideAll()
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            radius: Theme.radiusCard
            color: Theme.cardBackground

            ColumnLayout {
                anchors.fill: parent
                anchors.margins: Theme.spacing
                spacing: 0

                RowLayout {
                    Layout.fillWidth: true
                    Layout.leftMargin: Theme.spacing
                    Layout.rightMargin: Theme.spacing
                    Layout.preferredHeight: 28
                    spacing: Theme.spacing + 4

                    Text {
                        Layout.fillWidth: true
                        text: "App"
                        color: Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeCaption
                        font.weight: Font.DemiBold
                    }
                    Text {
                        Layout.preferredWidth: view.cpuWidth
                        Layout.minimumWidth: view.cpuWidth
                        Layout.maximumWidth: view.cpuWidth
                        horizontalAlignment: Text.AlignRight
                        text: "CPU"
                        color: view.model && view.model.sort === "CPU" ? Theme.textPrimary : Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeCaption
                        font.weight: Font.DemiBold
                    }
                    Text {
                        Layout.preferredWidth: view.memoryWidth
                        Layout.minimumWidth: view.memoryWidth
                        Layout.maximumWidth: view.memoryWidth
                        horizontalAlignment: Text.AlignRight
                        text: "Memoria"
                        color: view.model && view.model.sort === "Memoria" ? Theme.textPrimary : Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeCaption
                        font.weight: Font.DemiBold
                    }
                }
                Rectangle {
                    Layout.fillWidth: true
                    Layout.preferredHeight: 1
                    color: Theme.separator
                }

                ListView {
                    id: table
                    objectName: "appTable"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.topMargin: Theme.spacingSmall
                    clip: true
                    // Rows keep their identity across refreshes, so the one under the pointer is
                    // not rebuilt while it is being clicked; a change of order slides into place.
                    model: ActivityAppList { activity: view.model }
                    boundsBehavior: Flickable.StopAtBounds
                    ScrollBar.vertical: ScrollBar {}
                    move: Transition {
                        NumberAnimation { property: "y"; duration: Theme.reflow.duration; easing.type: Theme.reflow.easing }
                    }
                    moveDisplaced: Transition {
                        NumberAnimation { property: "y"; duration: Theme.reflow.duration; easing.type: Theme.reflow.easing }
                    }
                    add: Transition {
                        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.snappyUI.duration }
                    }
                    addDisplaced: Transition {
                        NumberAnimation { property: "y"; duration: Theme.reflow.duration; easing.type: Theme.reflow.easing }
                    }
                    removeDisplaced: Transition {
                        NumberAnimation { property: "y"; duration: Theme.reflow.duration; easing.type: Theme.reflow.easing }
                    }

                    delegate: ActivityRow {
                        id: appRow
                        objectName: "appRow-" + app.pid
                        width: ListView.view.width
                        activity: view.model
                        cpuWidth: view.cpuWidth
                        memoryWidth: view.memoryWidth
                        onForceQuitRequested: (app) => view.askForceQuit(app)
                        onMenuRequested: (app, x, y) => view.showMenu(app, appRow, x, y)
                    }
                }
            }

            Text {
                objectName: "emptyTable"
                anchors.centerIn: parent
                visible: view.apps.length === 0
                text: view.sampled ? "No hay apps abiertas" : "Midiendo…"
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
            }
        }
    }

    AppMenu {
        id: appMenu
        objectName: "appMenu"
        model: view.model
        onForceQuitRequested: (app) => view.askForceQuit(app)
    }

    ForceQuitConfirmation {
        id: forceQuit
        objectName: "forceQuitConfirmation"
        onConfirmed: (app) => view.model.forceQuit(app.pid)
    }
}
