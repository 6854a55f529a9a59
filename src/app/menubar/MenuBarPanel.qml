import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The panel under the menu-bar icon: free space, the disk and memory meters, the heaviest apps,
// and the quick actions. `dismissed` asks the window around it to go away after an action that
// leads elsewhere.
Rectangle {
    id: panel

    required property AppState appState
    property ActivityModel activity: appState ? appState.activity : null
    property ShellController shell: null
    property MenuBarSummary summary: MenuBarSummary { appState: panel.appState; activity: panel.activity }
    signal dismissed()

    // The app whose force quit waits for the user's answer.
    property var pendingForceQuit: null

    implicitWidth: Theme.panelWidth
    implicitHeight: column.implicitHeight + Theme.spacing * 1.5 * 2
    radius: Theme.radiusCard
    color: Theme.panelBackground
    border.color: Theme.separator

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: Theme.spacing * 1.5
        spacing: Theme.spacing

        // Header
        RowLayout {
            Layout.leftMargin: Theme.spacing
            Layout.rightMargin: Theme.spacing
            Layout.topMargin: Theme.spacingSmall
            spacing: Theme.spacing
            SymbolIcon { symbol: "wind"; size: 18 }
            Text {
                text: "Nubo"
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: 15
                font.weight: Font.Bold
            }
            Item { Layout.fillWidth: true }
            Text {
                objectName: "panelAvailable"
                text: panel.summary.availableLine
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: 12
            }
        }

        // Meters
        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.spacing
            Layout.rightMargin: Theme.spacing
            spacing: Theme.spacingLarge
            PanelMeter {
                objectName: "diskMeter"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                label: "Disco"
                value: panel.summary.diskValue
                percentText: panel.summary.diskPercent
                critical: panel.summary.diskCritical
            }
            PanelMeter {
                objectName: "memoryMeter"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                label: "Memoria"
                value: panel.summary.memoryValue
                percentText: panel.summary.memoryPercent
                critical: panel.summary.memoryCritical
            }
        }

        PanelSeparator {}

        PanelSectionTitle {
            Layout.leftMargin: Theme.spacing
            text: "Lo que más consume"
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            Repeater {
                objectName: "topApps"
                model: panel.summary.topApps
                delegate: MenuAppRow {
                    required property var modelData
                    Layout.fillWidth: true
                    app: modelData
                    canActivate: panel.activity ? panel.activity.canActivate : false
                    canHide: panel.activity ? panel.activity.canHide : false
                    canMinimize: panel.activity ? panel.activity.canMinimize : false
                    onActivateRequested: panel.activity.activate(modelData.pid)
                    onMinimizeRequested: panel.activity.minimize(modelData.pid)
                    onHideRequested: panel.activity.hide(modelData.pid)
                    onUnhideRequested: panel.activity.unhide(modelData.pid)
                    onQuitRequested: panel.activity.quit(modelData.pid)
                    onForceQuitRequested: {
                        panel.pendingForceQuit = modelData
                        forceQuit.open()
                    }
                }
            }
        }

        PanelSeparator {}

        // Actions
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            MenuRow {
                objectName: "cleanupRow"
                Layout.fillWidth: true
                symbol: "bubbles.and.sparkles"
                title: panel.summary.cleanupTitle
                onTriggered: {
                    if (panel.shell)
                        panel.shell.openMainWindow()
                    else
                        panel.appState.section = "home"
                    panel.dismissed()
                }
            }
            MenuRow {
                objectName: "hideAllRow"
                Layout.fillWidth: true
                symbol: "eye.slash"
                title: "Ocultar todas las apps"
                enabled: panel.activity !== null
                onTriggered: panel.activity.hideAll()
            }
            MenuRow {
                objectName: "minimizeAllRow"
                Layout.fillWidth: true
                symbol: "rectangle.stack.badge.minus"
                title: "Minimizar todas las ventanas"
                enabled: panel.activity !== null
                onTriggered: panel.activity.minimizeAll()
            }
        }

        PanelSeparator {}

        // Footer
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            MenuToggleRow {
                objectName: "launchAtLoginRow"
                Layout.fillWidth: true
                title: "Abrir al iniciar sesión"
                enabled: panel.activity !== null
                checked: panel.activity ? panel.activity.launchAtLogin : false
                onToggled: function(on) { panel.activity.launchAtLogin = on }
            }
            MenuRow {
                objectName: "updatesRow"
                Layout.fillWidth: true
                visible: panel.shell !== null && panel.shell.canCheckForUpdates
                symbol: "arrow.down.circle"
                title: "Buscar actualizaciones…"
                onTriggered: panel.shell.checkForUpdates()
            }
            MenuRow {
                objectName: "quitRow"
                Layout.fillWidth: true
                symbol: "power"
                title: "Salir de Nubo"
                onTriggered: panel.shell ? panel.shell.quit() : Qt.quit()
            }
        }
    }

    Dialog {
        id: forceQuit
        objectName: "forceQuitConfirmation"
        modal: true
        anchors.centerIn: Overlay.overlay
        width: panel.width - Theme.spacingLarge * 2
        padding: Theme.spacingLarge
        closePolicy: Popup.CloseOnEscape
        onClosed: panel.pendingForceQuit = null
        background: Rectangle {
            radius: Theme.radiusCard
            color: Theme.cardBackground
            border.color: Theme.separator
        }
        contentItem: ColumnLayout {
            spacing: Theme.spacing
            Text {
                objectName: "forceQuitTitle"
                Layout.fillWidth: true
                text: panel.summary.forceQuitTitle(panel.pendingForceQuit ? panel.pendingForceQuit.name : "")
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: 14
                font.weight: Font.Bold
                wrapMode: Text.WordWrap
            }
            Text {
                Layout.fillWidth: true
                text: panel.summary.forceQuitMessage
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: 12
                wrapMode: Text.WordWrap
            }
            RowLayout {
                Layout.alignment: Qt.AlignRight
                spacing: Theme.spacing
                ActionButton {
                    objectName: "forceQuitCancel"
                    text: "Cancelar"
                    onClicked: forceQuit.close()
                }
                ActionButton {
                    objectName: "forceQuitConfirm"
                    text: "Forzar salida"
                    destructive: true
                    onClicked: {
                        if (panel.pendingForceQuit && panel.activity)
                            panel.activity.forceQuit(panel.pendingForceQuit.pid)
                        forceQuit.close()
                    }
                }
            }
        }
    }
}
