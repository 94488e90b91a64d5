# The rooms of the tree, each after the rooms that it uses. A room is a folder; it may use itself and the rooms named
# after its colon. All of those precede it in this list, so there are no cycles.
set(ROOM_RULES
    "interfaces:"
    "common: interfaces"
    "dialogs: common interfaces"
    "mainwindow: dialogs common interfaces"
    "plugin: mainwindow common interfaces"
    "framework:"
    "storage:"
    "processes:"
    "json:"
    "farm/base: storage"
    "farm/accounts: farm/base storage"
    "farm/admin: farm/accounts farm/base storage"
    "farm/uploads: farm/accounts farm/base storage"
    "farm/jobs: farm/uploads farm/accounts farm/base storage"
    "farm/runner: json"
    "farm/rendering: farm/runner farm/jobs farm/uploads farm/accounts farm/base storage processes"
    "farm/slurm: farm/rendering farm/runner farm/jobs farm/base storage processes"
    "farm/http: farm/rendering farm/runner farm/jobs farm/uploads farm/accounts farm/base storage json"
    "farm: farm/http farm/slurm farm/rendering farm/runner farm/jobs farm/uploads farm/admin farm/accounts farm/base storage"
    "host/base:"
    "host/farmclient: host/base json"
    "host/rendercore: host/farmclient host/base storage processes json common"
    "host/settings: storage interfaces"
    "host/ui: host/settings common interfaces"
    "host/services: host/ui host/settings host/rendercore host/farmclient interfaces"
    "host/mainform: host/ui host/settings host/farmclient common interfaces"
    "host/frames: host/rendercore host/ui host/farmclient host/base common interfaces"
    "host/space: host/ui host/farmclient common interfaces"
    "host/process: host/base processes"
    "host/app: host/process host/space host/frames host/mainform host/services host/ui host/settings host/farmclient common interfaces"
    "host/tour: host/app host/mainform host/services common"
    "host: host/tour host/process host/app"
)

# The client's own rooms link no other Qt modules than these; D-Bus serves one file and may be missing.
set(PLUGIN_ROOMS interfaces common dialogs mainwindow plugin)
set(PLUGIN_QT_MODULES Core Gui Widgets DBus)
# Libraries named "…_logic" link these only.
set(LOGIC_QT_MODULES Core)

# room_of(<variable> <path>): the innermost room that holds a file or folder, named from the root; empty for none.
function(room_of variable path)
    set(found "")
    foreach(rule IN LISTS ROOM_RULES)
        string(REGEX REPLACE ":.*" "" room "${rule}")
        string(FIND "${path}/" "${room}/" place)
        string(LENGTH "${found}" longest)
        string(LENGTH "${room}" length)
        if(place EQUAL 0 AND length GREATER longest)
            set(found ${room})
        endif()
    endforeach()
    set(${variable} "${found}" PARENT_SCOPE)
endfunction()

# may_use(<variable> <room> <other room>)
function(may_use variable room other)
    set(${variable} FALSE PARENT_SCOPE)
    foreach(rule IN LISTS ROOM_RULES)
        string(REPLACE ":" "" words "${rule}")
        separate_arguments(words)
        list(POP_FRONT words owner)
        if(owner STREQUAL room AND (other STREQUAL room OR other IN_LIST words))
            set(${variable} TRUE PARENT_SCOPE)
        endif()
    endforeach()
endfunction()
