# The apps screen.
list(APPEND nubo_qml_files
    apps/AppsView.qml)
