# The apps screen: the list of applications, the chosen one's detail and its removal list.
list(APPEND nubo_qml_files
    apps/AppsView.qml
    apps/AppTag.qml
    apps/AppRow.qml
    apps/AppsEmptyDetail.qml
    apps/AppDetail.qml
    apps/RemovalRow.qml)
