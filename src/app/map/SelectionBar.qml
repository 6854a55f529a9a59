import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The marked nodes: how many, their size, and the buttons to unmark them or delete them; while a
// deletion runs, "Cancelar" stops it before its next node.
Rectangle {
    id: bar

    required property MapModel model
    signal deleteRequested()

    implicitWidth: row.implicitWidth + Theme.spacingLarge * 2
    implicitHeight: 52
    radius: height / 2
    color: Theme.cardBackground
    border.color: Theme.separator

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: Theme.spacingLarge + Theme.spacing
        anchors.rightMargin: Theme.spacing
        spacing: Theme.spacingLarge

        SymbolIcon {
            symbol: "checkmark.circle.fill"
            size: 18
            tint: Theme.red
        }
        Text {
            objectName: "selectionCount"
            text: bar.model ? bar.model.selectionText : ""
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            font.weight: Font.DemiBold
        }
        Text {
            objectName: "selectionSize"
            text: bar.model ? bar.model.markedSizeText : ""
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
        }
        Spinner {
            objectName: "deleting"
            visible: bar.model && bar.model.isDeleting
            running: visible
            implicitWidth: 22
            implicitHeight: 22
        }
        MapToolButton {
            objectName: "cancelDeletion"
            visible: bar.model && bar.model.isDeleting
            text: Texts.cancelLabel
            help: Texts.promptNote
            enabled: bar.model && !bar.model.isCancelling
            onClicked: bar.model.cancelDeletion()
        }
        MapToolButton {
            objectName: "unmark"
            text: "Desmarcar"
            enabled: bar.model && bar.model.markedCount > 0 && !bar.model.isDeleting
            onClicked: bar.model.unmarkAll()
        }
        MapToolButton {
            objectName: "deleteMarked"
            text: "Eliminar"
            symbol: "trash"
            prominent: true
            enabled: bar.model && bar.model.markedCount > 0 && !bar.model.isDeleting
            background: Rectangle {
                radius: Theme.radiusSmall + 1
                color: Theme.red
                opacity: parent.down ? 0.8 : 1
            }
            onClicked: bar.deleteRequested()
        }
    }
    Shortcut {
        sequence: "Ctrl+Shift+D"
        enabled: bar.visible && bar.model && bar.model.markedCount > 0 && !bar.model.isDeleting
        onActivated: bar.model.unmarkAll()
    }
}
