import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// Asks before a launch item's property list is deleted: nothing happens until "Eliminar" is
// pressed; "Cancelar" or Escape only forget the request. The owner sets `item` and opens it.
Dialog {
    id: dialog

    property var item: null
    signal confirmed(var item)

    modal: true
    anchors.centerIn: Overlay.overlay
    width: Math.min(440, parent ? parent.width - Theme.spacingHuge * 2 : 440)
    padding: Theme.spacingHuge
    closePolicy: Popup.CloseOnEscape

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, Theme.dark ? 0.45 : 0.22) }
    onClosed: item = null

    background: Rectangle {
        radius: Theme.radiusCard
        color: Theme.cardBackground
        border.color: Theme.separator
    }

    contentItem: ColumnLayout {
        spacing: Theme.spacingLarge

        Text {
            objectName: "removalTitle"
            Layout.fillWidth: true
            text: PerformanceTexts.removeTitleText(dialog.item ? dialog.item.name : "")
            textFormat: Text.PlainText
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: 15
            font.weight: Font.Bold
            wrapMode: Text.Wrap
        }
        Text {
            Layout.fillWidth: true
            text: PerformanceTexts.removeMessage
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            wrapMode: Text.WordWrap
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.spacing
            ActionButton {
                objectName: "removalCancel"
                text: Texts.cancelLabel
                onClicked: dialog.reject()
            }
            ActionButton {
                objectName: "removalConfirm"
                text: "Eliminar"
                destructive: true
                onClicked: {
                    const target = dialog.item
                    dialog.accept()
                    if (target)
                        dialog.confirmed(target)
                }
            }
        }
    }
}
