# The look every view shares (Theme) and the small pieces the screens are built from.
list(APPEND nubo_qml_files
    theme/Theme.qml
    theme/SymbolIcon.qml
    theme/PanePlaceholder.qml
    theme/UsageBar.qml
    theme/CheckCircle.qml
    theme/DeleteConfirmation.qml
    theme/ActionButton.qml
    theme/AppTile.qml
    theme/AppIcon.qml
    theme/Spinner.qml
    theme/PaneTitle.qml)
set_source_files_properties(theme/Theme.qml PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
