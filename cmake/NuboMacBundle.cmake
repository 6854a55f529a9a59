# The Mac application bundle around the nubo executable: its Info.plist, its icon (drawn at build
# time, turned into .icns by iconutil), the search path for frameworks inside the bundle, and
# Sparkle copied in when the build uses it. Included from src/app/CMakeLists.txt on Apple only;
# scripts/bundle-macos adds Qt (macdeployqt), signs and zips the result.
include(${PROJECT_SOURCE_DIR}/cmake/NuboInfoPlist.cmake)

set(NUBO_BUILD_NUMBER "1" CACHE STRING "CFBundleVersion: a number that grows with every published build")

set(nubo_update_keys)
if(NUBO_WITH_SPARKLE)
    set(nubo_update_keys FEED_URL "${NUBO_UPDATE_FEED_URL}" PUBLIC_KEY "${NUBO_UPDATE_PUBLIC_KEY}")
endif()
nubo_write_info_plist(${CMAKE_CURRENT_BINARY_DIR}/Info.plist
    EXECUTABLE nubo
    IDENTIFIER ${NUBO_BUNDLE_IDENTIFIER}
    VERSION ${PROJECT_VERSION}
    BUILD ${NUBO_BUILD_NUMBER}
    ${nubo_update_keys})

# The icon has no image source: a script draws every size iconutil wants, straight from shapes.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
find_program(NUBO_ICONUTIL iconutil REQUIRED)
set(nubo_iconset ${CMAKE_CURRENT_BINARY_DIR}/Nubo.iconset)
set(nubo_icns ${CMAKE_CURRENT_BINARY_DIR}/Nubo.icns)
add_custom_command(OUTPUT ${nubo_icns}
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${nubo_iconset}
    COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/packaging/icon/draw-icon.py --iconset ${nubo_iconset}
    COMMAND ${NUBO_ICONUTIL} --convert icns --output ${nubo_icns} ${nubo_iconset}
    DEPENDS ${PROJECT_SOURCE_DIR}/packaging/icon/draw-icon.py
    COMMENT "Drawing the application icon"
    VERBATIM)
target_sources(nubo PRIVATE ${nubo_icns})
set_source_files_properties(${nubo_icns} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)

# Qt finalises the executable at the end of this directory and only supplies its own Info.plist
# when none is set, so ours wins. Frameworks copied into Contents/Frameworks (Sparkle here, Qt by
# macdeployqt) are found through the rpath.
set_target_properties(nubo PROPERTIES
    MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist
    BUILD_RPATH "@executable_path/../Frameworks"
    INSTALL_RPATH "@executable_path/../Frameworks")

if(NUBO_WITH_SPARKLE)
    # ditto keeps the framework's symbolic links (Versions/Current), which a plain copy would not.
    add_custom_command(TARGET nubo POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E make_directory $<TARGET_BUNDLE_CONTENT_DIR:nubo>/Frameworks
        COMMAND ditto ${NUBO_SPARKLE_FRAMEWORK} $<TARGET_BUNDLE_CONTENT_DIR:nubo>/Frameworks/Sparkle.framework
        VERBATIM)
endif()
