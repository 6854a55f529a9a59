import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The detail page of one category: its texts and caution, the selection figures with the
// bulk button, its items, and the clean of this category alone.
Item {
    id: page

    required property CleanModel model
    readonly property var detail: model.detail
    readonly property var entries: detail.items !== undefined ? detail.items : []
    readonly property color tint: Theme.tint(detail.color)
    signal cleanRequested()

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.spacingHuge
        spacing: Theme.spacingLarge

        AbstractButton {
            id: backButton
            objectName: "detailBack"
            hoverEnabled: true
            implicitWidth: back.implicitWidth
            implicitHeight: back.implicitHeight
            contentItem: RowLayout {
                id: back
                spacing: Theme.spacingSmall
                SymbolIcon { symbol: "chevron.left"; size: 12; tint: Theme.accent }
                Text {
                    text: "Limpieza"
                    color: Theme.accent
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                    font.underline: backButton.hovered
                }
            }
            onClicked: page.model.open("")
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.spacingLarge
            Rectangle {
                implicitWidth: 48
                implicitHeight: 48
                radius: Theme.radiusCard
                color: Qt.rgba(page.tint.r, page.tint.g, page.tint.b, 0.16)
                SymbolIcon {
                    anchors.centerIn: parent
                    symbol: page.detail.symbol !== undefined ? page.detail.symbol : ""
                    size: 26
                    tint: page.tint
                }
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2
                Text {
                    objectName: "detailTitle"
                    text: page.detail.title !== undefined ? page.detail.title : ""
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeTitle
                    font.weight: Font.Bold
                }
                Text {
                    Layout.fillWidth: true
                    text: page.detail.subtitle !== undefined ? page.detail.subtitle : ""
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                    wrapMode: Text.WordWrap
                }
            }
        }

        Rectangle {
            objectName: "detailCaution"
            visible: page.detail.caution !== undefined && page.detail.caution.length > 0
            Layout.fillWidth: true
            implicitHeight: caution.implicitHeight + Theme.spacingLarge
            radius: Theme.radiusSmall + 2
            color: Theme.cautionBackground
            RowLayout {
                id: caution
                anchors.fill: parent
                anchors.leftMargin: Theme.spacingLarge - 4
                anchors.rightMargin: Theme.spacingLarge - 4
                spacing: Theme.spacing
                SymbolIcon { symbol: "exclamationmark.triangle.fill"; size: 14; tint: Theme.orange }
                Text {
                    Layout.fillWidth: true
                    text: page.detail.caution !== undefined ? page.detail.caution : ""
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                    wrapMode: Text.WordWrap
                }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.spacingLarge - 4
            ColumnLayout {
                spacing: 1
                Text {
                    objectName: "detailCountLine"
                    text: page.detail.countLine !== undefined ? page.detail.countLine : ""
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                    font.weight: Font.DemiBold
                }
                Text {
                    text: page.detail.selectedSizeText !== undefined ? page.detail.selectedSizeText : ""
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeCaption
                }
            }
            CleanButton {
                objectName: "toggleAllButton"
                text: page.detail.toggleLabel !== undefined ? page.detail.toggleLabel : ""
                enabled: page.entries.length > 0 && !page.model.isCleaning
                onClicked: page.model.toggleCategory(page.detail.id)
            }
            Item { Layout.fillWidth: true }
            Text {
                objectName: "detailItemCount"
                text: page.detail.itemCountText !== undefined ? page.detail.itemCountText : ""
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
            }
            CleanButton {
                objectName: "detailClean"
                text: page.model.isCleaning ? Texts.cancelLabel : "Limpiar"
                role: page.model.isCleaning ? "plain" : "prominent"
                enabled: page.model.isCleaning ? !page.model.isCancelling
                                               : page.detail.state !== undefined && page.detail.state !== "none"
                onClicked: page.model.isCleaning ? page.model.cancelClean() : page.cleanRequested()
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            radius: Theme.radiusCard
            color: Theme.cardBackground

            ListView {
                id: list
                objectName: "itemList"
                anchors.fill: parent
                anchors.margins: Theme.spacingSmall
                clip: true
                boundsBehavior: Flickable.StopAtBounds
                // A count, not the list: ticking an item keeps the rows and the scroll position.
                model: page.entries.length
                ScrollBar.vertical: ScrollBar {}
                delegate: ItemRow {
                    required property int index
                    width: list.width
                    entry: page.entries[index]
                    toggleEnabled: !page.model.isCleaning
                    onToggled: page.model.toggleItem(entry.id)
                    onRevealed: page.model.revealItem(entry.id)
                }
            }

            Spinner {
                anchors.centerIn: parent
                visible: page.detail.loading === true && page.entries.length === 0
                running: visible
            }
            Text {
                anchors.centerIn: parent
                visible: page.detail.loading === false && page.entries.length === 0
                text: page.detail.countText !== undefined ? page.detail.countText : ""
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: 15
            }
        }
    }
}
