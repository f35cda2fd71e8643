# Runs vb6host with --dump-menu and the standalone explorer with --dump-menu for the same node
# of the same project, and fails unless the two menus are the same: the add-in's tool window
# and the explorer build their context menus from one document. Called with -D: VB6HOST and
# EXPLORER (commands, as lists), PROJECT, KEY (the node, empty for empty tree space), DUMP (the
# file vb6host writes; the explorer's goes beside it), EXPECT (captions that must be in the
# menu, as a list), SCREENSHOT (optional, a PNG of the IDE with the menu open), EXPAND
# (optional, the components both open first, for the menu of a code line), ANY_STATES (optional:
# the enabled states may differ).
cmake_minimum_required(VERSION 3.19)

set(screenshotArguments)
if(SCREENSHOT)
    set(screenshotArguments --screenshot ${SCREENSHOT})
endif()
set(explorerDump ${DUMP}.explorer.json)
file(REMOVE ${DUMP} ${explorerDump})
set(expandArguments)
if(EXPAND)
    set(expandArguments --expand ${EXPAND})
endif()
execute_process(COMMAND ${VB6HOST} --connect-mode 1 --dump-menu "${KEY}" ${DUMP}
                        ${expandArguments} ${screenshotArguments} ${PROJECT}
                OUTPUT_VARIABLE hostOutput ERROR_VARIABLE hostOutput)
if(NOT hostOutput MATCHES "vb6host: all steps passed")
    message(FATAL_ERROR "vb6host did not pass:\n${hostOutput}")
endif()
execute_process(COMMAND ${EXPLORER} --dump-menu "${KEY}" ${explorerDump} ${expandArguments}
                        ${PROJECT}
                OUTPUT_VARIABLE explorerOutput ERROR_VARIABLE explorerOutput)
if(NOT EXISTS ${explorerDump})
    message(FATAL_ERROR "the explorer wrote no menu:\n${explorerOutput}")
endif()
file(READ ${DUMP} actual)
file(READ ${explorerDump} expected)
set(comparedActual "${actual}")
set(comparedExpected "${expected}")
if(ANY_STATES)
    # The IDE enables some commands by its own project window's selection, which projects on
    # disk do not have: the items, captions and keys must still be the same.
    string(REGEX REPLACE "\"enabled\":(true|false)" "" comparedActual "${actual}")
    string(REGEX REPLACE "\"enabled\":(true|false)" "" comparedExpected "${expected}")
endif()
if(NOT comparedActual STREQUAL comparedExpected)
    message(FATAL_ERROR "the tool window's menu for \"${KEY}\" differs from the explorer's:\n"
                        "tool window: ${actual}\nexplorer:    ${expected}")
endif()
string(JSON count LENGTH "${actual}" items)
if(count EQUAL 0)
    message(FATAL_ERROR "the menu for \"${KEY}\" is empty")
endif()
foreach(caption IN LISTS EXPECT)
    string(FIND "${actual}" "\"caption\":\"${caption}\"" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "the menu for \"${KEY}\" lacks \"${caption}\": ${actual}")
    endif()
endforeach()
message(STATUS "the tool window's menu for \"${KEY}\" is the explorer's (${count} items)")
