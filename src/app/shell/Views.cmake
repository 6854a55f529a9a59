# The window around the panes: sidebar, pane switching, toast and permission guidance.
list(APPEND nubo_qml_files
    shell/Main.qml
    shell/RootView.qml
    shell/Sidebar.qml
    shell/SidebarRow.qml
    shell/AppMenuButton.qml
    shell/DiskCard.qml
    shell/FullDiskAccessCard.qml
    shell/PermissionSheet.qml
    shell/ToastView.qml)
target_sources(nubo_ui PRIVATE shell/NativeMenus.h shell/NativeMenus.cpp shell/SignalQuit.h shell/SignalQuit.cpp)
