# The menu-bar panel.
list(APPEND nubo_qml_files)
