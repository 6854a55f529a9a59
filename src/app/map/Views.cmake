# The space map and its inspector.
list(APPEND nubo_qml_files
    map/MapView.qml
    map/PathBar.qml
    map/ScopeMenu.qml
    map/MapEmptyState.qml
    map/ScanningView.qml
    map/SelectionBar.qml
    map/InspectorPanel.qml
    map/KindBreakdown.qml
    map/InspectorRow.qml
    map/NodeMenu.qml
    map/InspectorPlaceholder.qml
    map/MapToolButton.qml)
target_sources(nubo_ui PRIVATE
    map/BubbleMap.h map/BubbleMap.cpp
    map/BubblePainter.h map/BubblePainter.cpp
    map/MapPicture.h map/MapPicture.cpp
    map/MapPictureNode.h map/MapPictureNode.cpp
    map/PathClipboard.h map/PathClipboard.cpp)
target_include_directories(nubo_ui PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/map)
