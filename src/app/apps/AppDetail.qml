import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The chosen application: its tile, name, version and tags, what an uninstall removes (each
// leftover can be unticked, the bundle cannot), and the uninstall, which always asks first.
Item {
    id: detail

    required property AppsModel model
    readonly property var app: model.selectedApp
    readonly property var rows: model.removalRows
    readonly property string originTag: app.originTag !== undefined ? app.originTag : ""

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.spacingHuge
        spacing: Theme.spacingLarge

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.spacingLarge
            AppIcon {
                implicitWidth: Theme.appsDetailIcon
                implicitHeight: Theme.appsDetailIcon
                source: detail.app.iconSource !== undefined ? detail.app.iconSource : ""
                initial: detail.app.initial !== undefined ? detail.app.initial : ""
                hue: detail.app.hue !== undefined ? detail.app.hue : 0
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: Theme.spacingSmall
                Text {
                    objectName: "appName"
                    Layout.fillWidth: true
                    text: detail.app.name !== undefined ? detail.app.name : ""
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeTitle
                    font.weight: Font.Bold
                    elide: Text.ElideRight
                    textFormat: Text.PlainText
                }
                RowLayout {
                    spacing: Theme.spacingSmall + 2
                    Text {
                        objectName: "versionLine"
                        visible: text.length > 0
                        text: detail.app.versionLine !== undefined ? detail.app.versionLine : ""
                        color: Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeBody
                        textFormat: Text.PlainText
                    }
                    Text {
                        visible: detail.originTag.length > 0 && detail.app.versionLine !== undefined
                                 && detail.app.versionLine.length > 0
                        text: "·"
                        color: Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeBody
                    }
                    AppTag {
                        objectName: "storeTag"
                        visible: detail.originTag.length > 0
                        text: detail.originTag
                        tint: Theme.accent
                    }
                    AppTag {
                        objectName: "runningTag"
                        visible: detail.model.selectedRunning
                        text: "Abierta"
                        tint: Theme.green
                    }
                }
            }
        }

        Text {
            Layout.fillWidth: true
            text: detail.model.removalNote
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            wrapMode: Text.WordWrap
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            radius: Theme.radiusCard
            color: Theme.cardBackground

            ListView {
                id: list
                objectName: "removalList"
                anchors.fill: parent
                anchors.margins: Theme.spacingSmall
                clip: true
                boundsBehavior: Flickable.StopAtBounds
                // A count, not the list: unticking keeps the rows and the scroll position.
                model: detail.rows.length
                ScrollBar.vertical: ScrollBar {}
                delegate: RemovalRow {
                    required property int index
                    width: list.width
                    entry: detail.rows[index]
                    toggleEnabled: !detail.model.isRemoving
                    onToggled: detail.model.toggle(entry.id)
                }
                footer: RowLayout {
                    width: list.width
                    height: detail.model.leftoversLoading ? 44 : 0
                    visible: detail.model.leftoversLoading
                    spacing: Theme.spacing
                    Item { implicitWidth: Theme.spacingLarge - 4 }
                    Spinner {
                        implicitWidth: 18
                        implicitHeight: 18
                        running: parent.visible
                    }
                    Text {
                        objectName: "leftoversLoading"
                        Layout.fillWidth: true
                        text: "Buscando restos…"
                        color: Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeBody
                    }
                }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.spacingLarge

            ColumnLayout {
                Layout.fillWidth: true
                spacing: Theme.spacingSmall
                RowLayout {
                    Layout.fillWidth: true
                    visible: detail.model.removalRefusal.length > 0
                    spacing: Theme.spacingSmall + 2
                    SymbolIcon { symbol: "info.circle"; size: 12; tint: Theme.textSecondary }
                    Text {
                        objectName: "removalRefusal"
                        Layout.fillWidth: true
                        text: detail.model.removalRefusal
                        color: Theme.textPrimary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeCaption
                        wrapMode: Text.WordWrap
                        textFormat: Text.PlainText
                    }
                }
                RowLayout {
                    Layout.fillWidth: true
                    visible: detail.model.removalRefusal.length === 0
                    spacing: Theme.spacingSmall + 2
                    SymbolIcon { symbol: "exclamationmark.triangle.fill"; size: 12; tint: Theme.orange }
                    Text {
                        Layout.fillWidth: true
                        text: "Se borrará para siempre"
                        color: Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeCaption
                        wrapMode: Text.WordWrap
                    }
                }
                RowLayout {
                    Layout.fillWidth: true
                    visible: detail.model.removalRefusal.length === 0
                    spacing: Theme.spacingSmall + 2
                    SymbolIcon { symbol: "lock.fill"; size: 12; tint: Theme.textSecondary }
                    Text {
                        Layout.fillWidth: true
                        text: "Puede pedirte la contraseña de administrador"
                        color: Theme.textSecondary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.fontSizeCaption
                        wrapMode: Text.WordWrap
                    }
                }
            }
            Spinner {
                visible: detail.model.isRemoving
                running: visible
                implicitWidth: 20
                implicitHeight: 20
            }
            CleanButton {
                objectName: "uninstallButton"
                text: detail.model.uninstallLabel
                symbol: "trash.fill"
                role: "destructive"
                enabled: !detail.model.isRemoving && detail.model.removalCount > 0
                onClicked: confirmation.open()
            }
        }
    }

    DeleteConfirmation {
        id: confirmation
        objectName: "uninstallConfirmation"
        verb: "Desinstalar"
        count: detail.model.removalCount
        size: detail.model.removalSize
        onConfirmed: detail.model.uninstall()
    }
}
