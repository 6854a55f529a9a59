# Compile options every Nubo target shares: strict warnings, Qt's safer API switches, sanitizers.
function(nubo_configure_target target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)
    if(NUBO_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    target_compile_definitions(${target} PRIVATE
        QT_NO_CONTEXTLESS_CONNECT
        QT_NO_CAST_FROM_ASCII
        QT_DISABLE_DEPRECATED_UP_TO=0x060400)
    if(NUBO_SANITIZER)
        target_compile_options(${target} PRIVATE -fsanitize=${NUBO_SANITIZER} -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${NUBO_SANITIZER})
        if(NUBO_SANITIZER STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            # Qt's generated QML cache loader uses a fence ThreadSanitizer cannot follow; g++
            # says so, and that warning must not stop the build.
            target_compile_options(${target} PRIVATE -Wno-error=tsan)
        endif()
    endif()
endfunction()
