# The two outside libraries of the plugin: installed ones where an option asks for them, else the embedded subset.
# The rest of the build links only qsclient_ctk and qsclient_qjson, whichever kind that is.
add_library(qsclient_ctk INTERFACE)
add_library(qsclient_qjson INTERFACE)

if(NOT (QSCLIENT_USE_SYSTEM_CTK AND QSCLIENT_USE_SYSTEM_QJSON))
    add_subdirectory(framework)
endif()

# Headers that an installed library lacks are generated here, in one folder per library.
set(bridge ${CMAKE_BINARY_DIR}/bridge)

if(QSCLIENT_USE_SYSTEM_CTK)
    # CTK's package links targets of these Qt modules without finding them.
    find_package(Qt5 5.15 REQUIRED COMPONENTS Concurrent Sql)
    find_package(CTK REQUIRED)
    # CTK does not install this header, though its ctkPlugin.h includes it for the name of a class.
    find_file(log_stream service/log/ctkLogStream.h PATHS ${CTK_INCLUDE_DIRS} NO_DEFAULT_PATH NO_CACHE)
    if(NOT log_stream)
        file(CONFIGURE OUTPUT ${bridge}/ctk/service/log/ctkLogStream.h CONTENT "class ctkLogStream;\n")
    endif()
    target_include_directories(qsclient_ctk SYSTEM INTERFACE "$<BUILD_INTERFACE:${CTK_INCLUDE_DIRS};${bridge}/ctk>")
    target_link_libraries(qsclient_ctk INTERFACE CTKPluginFramework)
else()
    target_link_libraries(qsclient_ctk INTERFACE qsclient_pluginframework)
endif()

if(QSCLIENT_USE_SYSTEM_QJSON)
    set(QJSON_DIR "" CACHE PATH "Folder that QJson is installed in, or the one of its CMake package")
    find_package(QJSON-qt5 REQUIRED HINTS ${QJSON_DIR})
    # QJson's target names no include folder, and for Qt 5 its headers are installed under qjson-qt5/ instead of qjson/.
    find_path(QJSON_HEADERS qjson-qt5/serializer.h HINTS ${QJSON_INCLUDE_DIR} REQUIRED)
    file(CONFIGURE OUTPUT ${bridge}/qjson/qjson/serializer.h CONTENT "#include <qjson-qt5/serializer.h>\n")
    target_include_directories(qsclient_qjson SYSTEM INTERFACE ${bridge}/qjson ${QJSON_HEADERS})
    target_link_libraries(qsclient_qjson INTERFACE qjson-qt5)
else()
    target_link_libraries(qsclient_qjson INTERFACE qsclient_json)
endif()
