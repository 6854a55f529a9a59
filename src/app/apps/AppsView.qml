import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// The apps screen: the installed applications, searchable and sortable, on one side and, for the
// one chosen, what uninstalling removes on the other.
Item {
    id: view

    required property AppState appState
    property AppsModel model: appState ? appState.apps : null
    readonly property var apps: model ? model.visible : []

    // The first visit lists the applications unless an analysis already did.
    onVisibleChanged: if (visible && model) model.enter()
    Component.onCompleted: if (visible && model) model.enter()

    RowLayout {
        anchors.fill: parent
        spacing: 0

        ColumnLayout {
            // Narrower on a small window, so the removal list keeps room for its paths.
            readonly property int listWidth: Math.min(Theme.appsListWidth, Math.round(view.width * 0.38))
            // A nested layout would stretch with its children: the list keeps its own width.
            Layout.fillWidth: false
            Layout.preferredWidth: listWidth
            Layout.maximumWidth: listWidth
            Layout.minimumWidth: listWidth
            Layout.fillHeight: true
            Layout.topMargin: Theme.spacingHuge
            spacing: Theme.spacing

            ColumnLayout {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.spacingHuge
                Layout.rightMargin: Theme.spacingLarge
                spacing: Theme.spacing

                PaneTitle {
                    title: "Apps"
                    subtitle: view.model ? view.model.headerLine : ""
                    subtitleName: "appsHeaderLine"
                }
                TextField {
                    objectName: "appsSearch"
                    Layout.fillWidth: true
                    Layout.topMargin: Theme.spacing
                    placeholderText: "Buscar apps"
                    text: view.model ? view.model.query : ""
                    onTextEdited: view.model.query = text
                }
                CleanButton {
                    id: sortButton
                    objectName: "sortButton"
                    text: view.model ? view.model.sortTitle : ""
                    symbol: "arrow.up.arrow.down"
                    onClicked: sortMenu.popup(sortButton, 0, sortButton.height + Theme.spacingSmall)

                    Menu {
                        id: sortMenu
                        objectName: "sortMenu"
                        MenuItem {
                            text: view.model ? view.model.sortLabels[0] : ""
                            checkable: true
                            checked: view.model !== null && view.model.sortIndex === 0
                            onTriggered: view.model.chooseSort(0)
                        }
                        MenuItem {
                            text: view.model ? view.model.sortLabels[1] : ""
                            checkable: true
                            checked: view.model !== null && view.model.sortIndex === 1
                            onTriggered: view.model.chooseSort(1)
                        }
                        MenuItem {
                            text: view.model ? view.model.sortLabels[2] : ""
                            checkable: true
                            checked: view.model !== null && view.model.sortIndex === 2
                            onTriggered: view.model.chooseSort(2)
                        }
                    }
                }
            }

            ListView {
                id: list
                objectName: "appList"
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.leftMargin: Theme.spacingLarge
                Layout.rightMargin: Theme.spacing
                clip: true
                spacing: 2
                boundsBehavior: Flickable.StopAtBounds
                // A count, not the list: sizes arriving one by one keep the rows and the scroll.
                model: view.apps.length
                ScrollBar.vertical: ScrollBar {}
                delegate: AppRow {
                    objectName: "appRow"
                    required property int index
                    width: list.width
                    app: view.apps[index]
                    selected: view.model.selection === app.id
                    onChosen: view.model.select(app.id)
                }
                footer: Item { height: Theme.spacingLarge }

                Spinner {
                    anchors.centerIn: parent
                    visible: view.model !== null && view.model.isLoading
                    running: visible
                }
            }
        }

        Rectangle {
            Layout.preferredWidth: 1
            Layout.fillHeight: true
            color: Theme.separator
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            AppsEmptyDetail {
                objectName: "appsEmptyDetail"
                anchors.fill: parent
                explanation: view.model !== null ? view.model.emptyNote : ""
                visible: view.model === null || view.model.selection.length === 0
            }
            AppDetail {
                objectName: "appDetail"
                anchors.fill: parent
                visible: view.model !== null && view.model.selection.length > 0
                model: view.model
            }
        }
    }
}
