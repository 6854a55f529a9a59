# The Debian package of what NuboLinuxInstall.cmake installs, built by CPack's DEB generator
# (scripts/package). The libraries the executable links are found by dpkg-shlibdeps; the QML
# modules it loads at run time are not linked, so scripts/package works them out from the views'
# imports and hands them over in NUBO_DEB_QML_DEPENDS.
set(NUBO_DEB_QML_DEPENDS "" CACHE STRING "Debian packages of the QML modules the views load")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nubo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR Nubo)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Libera espacio en el disco con seguridad")
set(CPACK_PACKAGE_DESCRIPTION
    "Nubo muestra qué llena el disco como un mapa de burbujas y libera espacio sin riesgos, \
desinstala aplicaciones con lo que dejan atrás y muestra qué usa el procesador y la memoria.")
set(CPACK_PACKAGE_CONTACT "Nubo <hola@nubo.app>")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${NUBO_DEB_QML_DEPENDS}")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
include(CPack)
