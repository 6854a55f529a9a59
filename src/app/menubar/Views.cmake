# The menu-bar panel: its window and the pieces it is built from; the tray icon that opens it.
list(APPEND nubo_qml_files
    menubar/MenuBarWindow.qml
    menubar/MenuBarPanel.qml
    menubar/PanelSectionTitle.qml
    menubar/PanelSeparator.qml
    menubar/PanelMeter.qml
    menubar/MenuAppRow.qml
    menubar/MenuRow.qml
    menubar/MenuToggleRow.qml)
target_sources(nubo_ui PRIVATE menubar/MenuBarPresenter.h menubar/MenuBarPresenter.cpp)
