# Warnings, strictness and sanitizers, in one interface target that all of the project's targets link.
add_library(qsclient_flags INTERFACE)

# Headers are named by their path from here ("mainwindow/vtr_joblist.h"), so that an include shows which room it uses.
target_include_directories(qsclient_flags INTERFACE ${PROJECT_SOURCE_DIR})

target_compile_options(qsclient_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)

# Off by default: a new warning of another compiler must not stop a packager.
option(QSCLIENT_WARNINGS_AS_ERRORS "Stop at warnings" OFF)
if(QSCLIENT_WARNINGS_AS_ERRORS)
    target_compile_options(qsclient_flags INTERFACE -Werror)
endif()

target_compile_definitions(qsclient_flags INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_USE_QSTRINGBUILDER
    QT_DEPRECATED_WARNINGS
    QT_DISABLE_DEPRECATED_BEFORE=0x050F00)

option(QSCLIENT_SANITIZE "Build with the address and undefined behaviour sanitizers" OFF)
if(QSCLIENT_SANITIZE)
    target_compile_options(qsclient_flags INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(qsclient_flags INTERFACE -fsanitize=address,undefined)
endif()

option(QSCLIENT_FUZZ "Build the fuzz targets to search for findings, with both sanitizers; needs clang" OFF)
if(QSCLIENT_FUZZ)
    target_compile_definitions(qsclient_flags INTERFACE QT_FORCE_ASSERTS)
    target_compile_options(qsclient_flags INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(qsclient_flags INTERFACE -fsanitize=address,undefined)
endif()

option(QSCLIENT_COVERAGE "Count which lines the tests run; adds the target \"coverage\"" OFF)
if(QSCLIENT_COVERAGE)
    target_compile_options(qsclient_flags INTERFACE --coverage)
    target_link_options(qsclient_flags INTERFACE --coverage)
    find_program(GCOVR gcovr REQUIRED)
    add_custom_target(coverage
        COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR}
        COMMAND ${CMAKE_CTEST_COMMAND} --output-on-failure -j2
        COMMAND ${GCOVR} --root ${PROJECT_SOURCE_DIR} --exclude "${PROJECT_SOURCE_DIR}/(build|tests|bench|fuzz)/"
            --sort-percentage ${CMAKE_BINARY_DIR}
        WORKING_DIRECTORY ${CMAKE_BINARY_DIR}
        USES_TERMINAL)
endif()
