# The window around the panes: sidebar, pane switching, toast and permission guidance.
list(APPEND nubo_qml_files
    shell/Main.qml
    shell/RootView.qml
    shell/Sidebar.qml
    shell/SidebarRow.qml
    shell/DiskCard.qml
    shell/ToastView.qml)
