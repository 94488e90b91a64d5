# The two outside libraries of the plugin: the real ones where they are asked for, else the embedded subset.
# Targets: qsclient_ctk and qsclient_qjson, whichever of the two stands behind them.
add_library(qsclient_ctk INTERFACE)
add_library(qsclient_qjson INTERFACE)

if(NOT (QSCLIENT_USE_SYSTEM_CTK AND QSCLIENT_USE_SYSTEM_QJSON))
    add_subdirectory(framework)
endif()

if(QSCLIENT_USE_SYSTEM_CTK)
    find_package(CTK REQUIRED)
    target_include_directories(qsclient_ctk SYSTEM INTERFACE ${CTK_INCLUDE_DIRS})
    target_link_libraries(qsclient_ctk INTERFACE CTKPluginFramework)
else()
    target_link_libraries(qsclient_ctk INTERFACE qsclient_pluginframework)
endif()

if(QSCLIENT_USE_SYSTEM_QJSON)
    find_package(QJSON-qt5 REQUIRED)
    target_link_libraries(qsclient_qjson INTERFACE qjson-qt5)
else()
    target_link_libraries(qsclient_qjson INTERFACE qsclient_json)
endif()
