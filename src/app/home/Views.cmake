# The home screen.
list(APPEND nubo_qml_files
    home/HomeView.qml)
