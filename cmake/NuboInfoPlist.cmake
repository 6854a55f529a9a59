# The application bundle's Info.plist, written from packaging/macos/Info.plist.in. Only the Mac
# build ships it, but writing it is plain CMake, so the Linux tests check the result too.
#
# No sandbox entitlement and no LSUIElement on purpose: the program reads the whole home folder
# (with Full Disk Access) and switches between a Dock icon and the menu bar at run time.

# Text placed inside <string> elements: the three characters XML reserves there are escaped, so a
# feed address with a query ("?a=1&b=2") still gives a well-formed list.
function(nubo_plist_escape out text)
    string(REPLACE "&" "&amp;" text "${text}")
    string(REPLACE "<" "&lt;" text "${text}")
    string(REPLACE ">" "&gt;" text "${text}")
    set(${out} "${text}" PARENT_SCOPE)
endfunction()

# nubo_write_info_plist(<output> EXECUTABLE <name> IDENTIFIER <id> VERSION <x.y.z> BUILD <n>
#                       [FEED_URL <address> [PUBLIC_KEY <key>]])
# With FEED_URL, Sparkle's keys are added: where to look for updates, the key that signs them,
# and automatic checks on.
function(nubo_write_info_plist output)
    cmake_parse_arguments(ARG "" "EXECUTABLE;IDENTIFIER;VERSION;BUILD;FEED_URL;PUBLIC_KEY" "" ${ARGN})
    foreach(required EXECUTABLE IDENTIFIER VERSION BUILD)
        if(NOT ARG_${required})
            message(FATAL_ERROR "nubo_write_info_plist: ${required} is missing")
        endif()
    endforeach()
    nubo_plist_escape(NUBO_PLIST_EXECUTABLE "${ARG_EXECUTABLE}")
    nubo_plist_escape(NUBO_PLIST_IDENTIFIER "${ARG_IDENTIFIER}")
    nubo_plist_escape(NUBO_PLIST_VERSION "${ARG_VERSION}")
    nubo_plist_escape(NUBO_PLIST_BUILD "${ARG_BUILD}")
    set(NUBO_PLIST_UPDATE_KEYS "")
    if(ARG_FEED_URL)
        nubo_plist_escape(feed "${ARG_FEED_URL}")
        string(APPEND NUBO_PLIST_UPDATE_KEYS
            "\t<key>SUFeedURL</key>\n\t<string>${feed}</string>\n"
            "\t<key>SUEnableAutomaticChecks</key>\n\t<true/>\n")
        if(ARG_PUBLIC_KEY)
            nubo_plist_escape(key "${ARG_PUBLIC_KEY}")
            string(APPEND NUBO_PLIST_UPDATE_KEYS "\t<key>SUPublicEDKey</key>\n\t<string>${key}</string>\n")
        endif()
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/packaging/macos/Info.plist.in ${output} @ONLY)
endfunction()
