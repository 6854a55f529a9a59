import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// Asks before anything is deleted for good: "¿Eliminar 3 elementos (1,2 GB)?". The owner binds
// `count` and `size`, opens it, and handles `confirmed`.
Dialog {
    id: dialog

    property int count: 0
    property real size: 0
    property string verb: Texts.deleteVerb
    signal confirmed()

    modal: true
    anchors.centerIn: Overlay.overlay
    width: Math.min(420, parent ? parent.width - Theme.spacingHuge * 2 : 420)
    padding: Theme.spacingHuge
    closePolicy: Popup.CloseOnEscape

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, Theme.dark ? 0.45 : 0.22) }

    background: Rectangle {
        radius: Theme.radiusCard
        color: Theme.cardBackground
        border.color: Theme.separator
    }

    contentItem: ColumnLayout {
        spacing: Theme.spacingLarge

        Text {
            objectName: "confirmationTitle"
            Layout.fillWidth: true
            text: Texts.confirmationTitle(dialog.verb, dialog.count, dialog.size)
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: 15
            font.weight: Font.Bold
            wrapMode: Text.WordWrap
        }
        Text {
            Layout.fillWidth: true
            text: Texts.confirmationMessage()
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            wrapMode: Text.WordWrap
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.spacing
            ActionButton {
                objectName: "cancelButton"
                text: Texts.cancelLabel
                onClicked: dialog.reject()
            }
            ActionButton {
                objectName: "confirmButton"
                text: dialog.verb
                destructive: true
                onClicked: {
                    dialog.accept()
                    dialog.confirmed()
                }
            }
        }
    }
}
