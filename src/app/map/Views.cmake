# The space map and its inspector.
list(APPEND nubo_qml_files
    map/MapView.qml)
