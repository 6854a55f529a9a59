import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The home screen: the disk at a glance, the safe clean and the recommendations.
Item {
    id: view

    required property AppState appState
    property HomeSummary summary: HomeSummary { appState: view.appState }

    Flickable {
        id: flick
        anchors.fill: parent
        contentWidth: width
        contentHeight: page.implicitHeight + Theme.spacingHuge * 2
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: page
            x: Math.max(Theme.spacingHuge, (flick.width - width) / 2)
            y: Theme.spacingHuge
            width: Math.min(flick.width - Theme.spacingHuge * 2, Theme.homeMaxWidth)
            spacing: Theme.spacingLarge

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.spacing
                PaneTitle {
                    Layout.fillWidth: true
                    title: "Resumen"
                }
                ToolButton {
                    objectName: "analyzeAgain"
                    enabled: view.summary.canAnalyzeAgain
                    implicitWidth: 32
                    implicitHeight: 32
                    contentItem: Item {
                        SymbolIcon {
                            anchors.centerIn: parent
                            symbol: "arrow.clockwise"
                            size: 16
                            opacity: parent.parent.enabled ? 1 : 0.35
                        }
                    }
                    ToolTip.visible: hovered
                    ToolTip.delay: 600
                    ToolTip.text: "Analizar de nuevo"
                    onClicked: view.summary.analyze()
                }
            }

            StatusHeader {
                Layout.fillWidth: true
                summary: view.summary
            }

            SafeCleanRow {
                Layout.fillWidth: true
                summary: view.summary
            }

            Text {
                Layout.topMargin: Theme.spacing
                text: "Recomendaciones"
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
            }

            ColumnLayout {
                // Empty, it would still take its place in the page's spacing.
                visible: view.summary.recommendations.length > 0
                Layout.fillWidth: true
                spacing: Theme.spacing
                Repeater {
                    objectName: "recommendations"
                    model: view.summary.recommendations
                    delegate: RecommendationRow {
                        required property var modelData
                        Layout.fillWidth: true
                        recommendation: modelData
                        onActivated: view.summary.perform(modelData.id)
                    }
                }
            }

            RowLayout {
                objectName: "nothingToReview"
                visible: view.summary.recommendations.length === 0
                Layout.fillWidth: true
                spacing: Theme.spacing
                SymbolIcon { symbol: "checkmark.seal.fill"; tint: Theme.green; size: 18 }
                Text {
                    Layout.fillWidth: true
                    text: view.summary.nothingToReview
                    color: Theme.textPrimary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.fontSizeBody
                    wrapMode: Text.WordWrap
                }
            }

            Text {
                Layout.fillWidth: true
                Layout.topMargin: Theme.spacingLarge
                text: view.summary.footer
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeCaption
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
            }
        }
    }
}
