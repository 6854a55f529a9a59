# The performance screen.
list(APPEND nubo_qml_files
    performance/PerformanceView.qml)
