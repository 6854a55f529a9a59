# The activity screen.
list(APPEND nubo_qml_files
    activity/ActivityView.qml
    activity/ActivityRow.qml
    activity/AppActions.qml
    activity/AppMenu.qml
    activity/AppMenuItem.qml
    activity/CapsuleButton.qml
    activity/ForceQuitConfirmation.qml
    activity/SegmentedPicker.qml
    activity/StatTile.qml
    activity/SymbolButton.qml)
