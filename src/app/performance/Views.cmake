# The performance screen.
list(APPEND nubo_qml_files
    performance/PerformanceView.qml
    performance/LaunchItemMenu.qml
    performance/LaunchItemRemoval.qml
    performance/LaunchItemRow.qml
    performance/MaintenanceRow.qml)
# Copying a path and showing a file's folder, for the launch items' menu.
target_sources(nubo_ui PRIVATE performance/FileActions.h performance/FileActions.cpp)
target_include_directories(nubo_ui PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/performance)
