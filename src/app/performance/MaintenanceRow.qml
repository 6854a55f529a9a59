import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// One maintenance task: its tinted symbol, title (with a lock when it asks for the administrator
// password), what it does, its caution, an extra line where the task has one (the snapshot
// count), the outcome of its last run, and "Ejecutar", which reads "Cancelar" while the task
// runs. A task behind the administrator prompt cannot be cancelled: the row says so instead.
Rectangle {
    id: row

    property var task: ({})
    property bool running: false
    property bool cancelling: false
    property var outcome: null
    property string extra
    signal runRequested(string id)
    signal cancelRequested(string id)

    implicitHeight: Math.max(Theme.tableRowHeight + 12, texts.implicitHeight + Theme.spacingLarge)
    radius: Theme.radiusSmall
    color: hover.hovered ? Theme.rowHover : "transparent"
    Behavior on color { ColorAnimation { duration: Theme.snappyUI.duration } }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spacing
        anchors.rightMargin: Theme.spacing
        spacing: Theme.spacing + 4

        Rectangle {
            Layout.alignment: Qt.AlignVCenter
            implicitWidth: 30
            implicitHeight: 30
            radius: 8
            color: Theme.tint(row.task.color || "")
            SymbolIcon {
                anchors.centerIn: parent
                symbol: row.task.symbol || ""
                size: 16
                tint: "white"
            }
        }
        ColumnLayout {
            id: texts
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignVCenter
            spacing: 2
            RowLayout {
                spacing: Theme.spacingSmall + 2
                Text {
                    text: row.task.title || ""
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                    font.weight: Font.DemiBold
                }
                SymbolIcon {
                    objectName: "taskLock"
                    visible: row.task.needsAdmin === true
                    symbol: "lock.fill"
                    size: 11
                    tint: Theme.textSecondary
                }
            }
            Text {
                Layout.fillWidth: true
                text: row.task.detail || ""
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                wrapMode: Text.WordWrap
            }
            Text {
                objectName: "taskExtra"
                Layout.fillWidth: true
                visible: row.extra.length > 0
                text: row.extra
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                font.weight: Font.DemiBold
                wrapMode: Text.WordWrap
            }
            Text {
                objectName: "taskPromptNote"
                Layout.fillWidth: true
                visible: row.running && row.task.needsAdmin === true
                text: Texts.promptNote
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                font.italic: true
                wrapMode: Text.WordWrap
            }
            RowLayout {
                visible: (row.task.caution || "").length > 0
                spacing: Theme.spacingSmall
                SymbolIcon { symbol: "exclamationmark.triangle.fill"; size: 11; tint: Theme.orange }
                Text {
                    objectName: "taskCaution"
                    Layout.fillWidth: true
                    text: row.task.caution || ""
                    color: Theme.orange
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeCaption
                    wrapMode: Text.WordWrap
                }
            }
        }
        RowLayout {
            objectName: "taskOutcome"
            visible: !row.running && row.outcome !== null && row.outcome !== undefined
            Layout.maximumWidth: 240
            spacing: Theme.spacingSmall + 2
            SymbolIcon {
                symbol: row.outcome ? PerformanceTexts.outcomeSymbolName(row.outcome.ok) : ""
                size: 14
                tint: row.outcome && row.outcome.ok ? Theme.green : Theme.red
            }
            Text {
                objectName: "taskOutcomeText"
                Layout.fillWidth: true
                text: row.outcome ? row.outcome.message : ""
                textFormat: Text.PlainText
                color: row.outcome && row.outcome.ok ? Theme.green : Theme.red
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
        }
        Spinner {
            objectName: "taskBusy"
            visible: row.running
            running: row.running
            implicitWidth: 26
            implicitHeight: 26
        }
        CapsuleButton {
            objectName: "taskRun"
            Layout.preferredWidth: 88
            text: row.running ? Texts.cancelLabel : "Ejecutar"
            enabled: !row.running || (row.task.needsAdmin !== true && !row.cancelling)
            onClicked: row.running ? row.cancelRequested(row.task.id) : row.runRequested(row.task.id)
        }
    }

    HoverHandler { id: hover }
}
