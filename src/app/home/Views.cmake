# The home screen.
list(APPEND nubo_qml_files
    home/HomeView.qml
    home/StatusHeader.qml
    home/DiskRing.qml
    home/SafeCleanRow.qml
    home/RecommendationRow.qml)
