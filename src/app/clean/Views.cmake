# The cleanup screen: the overview of categories, a category's detail and their rows.
list(APPEND nubo_qml_files
    clean/CleanView.qml
    clean/CleanOverview.qml
    clean/CleanSummary.qml
    clean/CleanButton.qml
    clean/CategoryRow.qml
    clean/CategoryDetail.qml
    clean/ItemRow.qml
    clean/ItemIcon.qml)
