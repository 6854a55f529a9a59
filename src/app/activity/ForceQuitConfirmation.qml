import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// Asks before an application is ended at once: nothing happens until "Forzar salida" is
// pressed, and "Cancelar" or Escape only forget the request. The owner sets `app` and opens it.
Dialog {
    id: dialog

    property var app: null
    signal confirmed(var app)

    modal: true
    anchors.centerIn: Overlay.overlay
    width: Math.min(420, parent ? parent.width - Theme.spacingHuge * 2 : 420)
    padding: Theme.spacingHuge
    closePolicy: Popup.CloseOnEscape

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, Theme.dark ? 0.45 : 0.22) }
    onClosed: app = null

    background: Rectangle {
        radius: Theme.radiusCard
        color: Theme.cardBackground
        border.color: Theme.separator
    }

    contentItem: ColumnLayout {
        spacing: Theme.spacingLarge

        RowLayout {
            spacing: Theme.spacing
            SymbolIcon { symbol: "exclamationmark.octagon"; size: 22; tint: Theme.red }
            Text {
                objectName: "forceQuitTitle"
                Layout.fillWidth: true
                text: ActivityTexts.forceQuitTitleText(dialog.app ? dialog.app.name : "")
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: 15
                font.weight: Font.Bold
                wrapMode: Text.WordWrap
            }
        }
        Text {
            Layout.fillWidth: true
            text: ActivityTexts.forceQuitMessage
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            wrapMode: Text.WordWrap
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.spacing
            ActionButton {
                objectName: "forceQuitCancel"
                text: Texts.cancelLabel
                onClicked: dialog.reject()
            }
            ActionButton {
                objectName: "forceQuitConfirm"
                text: "Forzar salida"
                destructive: true
                onClicked: {
                    const target = dialog.app
                    dialog.accept()
                    if (target)
                        dialog.confirmed(target)
                }
            }
        }
    }
}
