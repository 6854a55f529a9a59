# The cleanup screen.
list(APPEND nubo_qml_files
    clean/CleanView.qml)
