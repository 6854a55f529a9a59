import QtQuick
import QtQuick.Controls
import Nubo.Models

// The cleanup screen: the overview of every category and, when the model's path names one, that
// category's detail page. The first visit starts the one scan; the cleans ask first.
Item {
    id: view

    required property AppState appState
    property CleanModel model: appState ? appState.clean : null
    readonly property bool showsDetail: model !== null && model.path.length > 0

    // Only the first visit scans; the model decides.
    onVisibleChanged: if (visible && model) model.enter()
    Component.onCompleted: if (visible && model) model.enter()

    CleanOverview {
        objectName: "cleanOverview"
        width: parent.width
        height: parent.height
        model: view.model
        visible: opacity > 0
        opacity: view.showsDetail ? 0 : 1
        x: view.showsDetail ? -Theme.spacingHuge : 0
        Behavior on opacity { NumberAnimation { duration: Theme.snappyUI.duration } }
        Behavior on x { NumberAnimation { duration: Theme.snappyUI.duration; easing.type: Theme.snappyUI.easing } }
        onCleanRequested: cleanAll.open()
    }

    CategoryDetail {
        objectName: "categoryDetail"
        width: parent.width
        height: parent.height
        model: view.model
        visible: opacity > 0
        opacity: view.showsDetail ? 1 : 0
        x: view.showsDetail ? 0 : Theme.spacingHuge
        Behavior on opacity { NumberAnimation { duration: Theme.snappyUI.duration } }
        Behavior on x { NumberAnimation { duration: Theme.snappyUI.duration; easing.type: Theme.snappyUI.easing } }
        onCleanRequested: cleanCategory.open()
    }

    DeleteConfirmation {
        id: cleanAll
        objectName: "cleanAllConfirmation"
        verb: "Limpiar"
        count: view.model ? view.model.selectedCount : 0
        size: view.model ? view.model.totalSelected : 0
        onConfirmed: view.model.clean()
    }

    DeleteConfirmation {
        id: cleanCategory
        objectName: "cleanCategoryConfirmation"
        readonly property var detail: view.model ? view.model.detail : ({})
        verb: "Limpiar"
        count: detail.selectedCount !== undefined ? detail.selectedCount : 0
        size: detail.selectedSize !== undefined ? detail.selectedSize : 0
        onConfirmed: view.model.clean([detail.id])
    }
}
