# The activity screen.
list(APPEND nubo_qml_files
    activity/ActivityView.qml)
