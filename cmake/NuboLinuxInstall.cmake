# Nubo as a Linux desktop application: the executable, a desktop entry and AppStream metainfo
# named by the application's one identifier, and its icon in the hicolor theme (drawn at build
# time by the script that draws the Mac icon, so both systems show the same picture). The window
# takes its icon from the theme and falls back to the copy built into the executable. CPack's
# DEB generator packages what is installed here. Included from src/app/CMakeLists.txt on Linux.
include(GNUInstallDirs)

find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(nubo_theme ${CMAKE_CURRENT_BINARY_DIR}/icons/hicolor)
set(nubo_theme_icon ${nubo_theme}/256x256/apps/${NUBO_BUNDLE_IDENTIFIER}.png)
add_custom_command(OUTPUT ${nubo_theme_icon}
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${nubo_theme}
    COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/packaging/icon/draw-icon.py
            --theme ${nubo_theme} --name ${NUBO_BUNDLE_IDENTIFIER}
    DEPENDS ${PROJECT_SOURCE_DIR}/packaging/icon/draw-icon.py
    COMMENT "Drawing the application icon"
    VERBATIM)
qt_add_resources(nubo "nubo_icon"
    PREFIX /icons
    BASE ${nubo_theme}/256x256/apps
    FILES ${nubo_theme_icon})

string(TIMESTAMP NUBO_RELEASE_DATE "%Y-%m-%d" UTC)
configure_file(${PROJECT_SOURCE_DIR}/packaging/linux/nubo.desktop.in
               ${CMAKE_CURRENT_BINARY_DIR}/${NUBO_BUNDLE_IDENTIFIER}.desktop @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/packaging/linux/nubo.metainfo.xml.in
               ${CMAKE_CURRENT_BINARY_DIR}/${NUBO_BUNDLE_IDENTIFIER}.metainfo.xml @ONLY)

install(TARGETS nubo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${NUBO_BUNDLE_IDENTIFIER}.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${NUBO_BUNDLE_IDENTIFIER}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(DIRECTORY ${nubo_theme}/ DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
