# Warnings, strictness and sanitizers, in one interface target that every target of ours links.
add_library(qsclient_flags INTERFACE)

# Headers are named by their path from here ("mainwindow/vtr_joblist.h"), so an include shows which room it reaches into.
target_include_directories(qsclient_flags INTERFACE ${PROJECT_SOURCE_DIR})

target_compile_options(qsclient_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Werror)

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
