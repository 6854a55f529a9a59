import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// Explains Full Disk Access in three steps and opens the right settings page. While it is up it
// looks for the grant every `pollInterval` milliseconds and closes by itself once it is there.
Popup {
    id: sheet

    required property AppState appState
    property int pollInterval: appState ? appState.permissionPollInterval : 2000

    visible: appState ? appState.showPermissions : false
    onClosed: if (appState) appState.showPermissions = false

    modal: true
    dim: true
    focus: true
    anchors.centerIn: Overlay.overlay
    width: Math.min(Theme.sheetWidth, parent ? parent.width - Theme.spacingHuge * 2 : Theme.sheetWidth)
    padding: Theme.spacingHuge + Theme.spacing
    closePolicy: Popup.CloseOnEscape

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.snappyUI.duration }
        NumberAnimation { property: "scale"; from: 0.96; to: 1; duration: Theme.snappyUI.duration; easing.type: Theme.snappyUI.easing }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.snappyUI.duration }
    }

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, Theme.dark ? 0.45 : 0.22) }

    background: Rectangle {
        radius: Theme.radiusCard + 2
        color: Theme.windowBackground
        border.color: Theme.separator
    }

    Timer {
        interval: sheet.pollInterval
        repeat: true
        running: sheet.opened
        onTriggered: sheet.appState.pollPermissions()
    }

    contentItem: ColumnLayout {
        spacing: Theme.spacingLarge
        focus: true
        Keys.onReturnPressed: sheet.appState.openFullDiskAccessSettings()
        Keys.onEnterPressed: sheet.appState.openFullDiskAccessSettings()

        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            symbol: "lock.shield.fill"
            tint: Theme.accent
            size: 56
        }
        Text {
            objectName: "permissionTitle"
            Layout.fillWidth: true
            text: "Dale a Nubo acceso al disco"
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: 20
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
        Text {
            Layout.fillWidth: true
            text: "Con un solo permiso, macOS deja de preguntarte carpeta por carpeta y Nubo puede revisar la Papelera, Descargas, Mail y los datos que dejan las apps."
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            lineHeight: 1.1
        }

        Rectangle {
            Layout.fillWidth: true
            implicitHeight: steps.implicitHeight + Theme.spacingLarge * 2
            radius: Theme.radiusCard
            color: Theme.cardBackground
            ColumnLayout {
                id: steps
                anchors.fill: parent
                anchors.margins: Theme.spacingLarge
                spacing: Theme.spacing * 1.5
                Repeater {
                    model: ["Pulsa «Abrir Ajustes».",
                            "Activa <b>Nubo</b> en Acceso total al disco.",
                            "Vuelve aquí: Nubo lo detecta solo."]
                    delegate: RowLayout {
                        required property int index
                        required property string modelData
                        spacing: Theme.spacing * 1.5
                        Rectangle {
                            Layout.preferredWidth: 22
                            Layout.preferredHeight: 22
                            radius: 11
                            color: Theme.accent
                            Text {
                                anchors.centerIn: parent
                                text: index + 1
                                color: "white"
                                font.family: Theme.fontFamily
                                font.pixelSize: 12
                                font.weight: Font.Bold
                            }
                        }
                        Text {
                            Layout.fillWidth: true
                            text: modelData
                            textFormat: Text.StyledText
                            color: Theme.textPrimary
                            font.family: Theme.fontFamily
                            font.pixelSize: Theme.fontSizeBody
                            wrapMode: Text.WordWrap
                        }
                    }
                }
            }
        }

        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            spacing: Theme.spacing
            SymbolIcon { symbol: "hand.raised.fill"; tint: Theme.textSecondary; size: 14 }
            Text {
                text: "Nubo nunca envía nada fuera de tu Mac."
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Theme.spacing
            spacing: Theme.spacing
            ActionButton {
                objectName: "notNowButton"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                text: "Ahora no"
                onClicked: sheet.appState.showPermissions = false
            }
            ActionButton {
                objectName: "openSettingsButton"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                text: "Abrir Ajustes"
                prominent: true
                onClicked: sheet.appState.openFullDiskAccessSettings()
            }
        }
    }
}
