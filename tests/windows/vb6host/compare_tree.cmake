# Runs vb6host with --dump-tree and the command-line tool's `tree --format json` on the same
# project, and fails unless the tool window's tree has the same nodes: the same texts with the
# same children, in the same order. Called with -D: VB6HOST and ARBOLET (commands, as lists),
# PROJECT, DUMP (the file vb6host writes), WINE (the command that runs a program of the prefix),
# EXPAND (optional, one component's name), and
# EXPECT (texts that must be in the tree, as a list), SCREENSHOT (optional, a PNG of the IDE with
# the tree as dumped), HOST_OPTIONS (optional, more vb6host options, as a list) and HOST_EXPECT
# (optional, a text vb6host must print).
cmake_minimum_required(VERSION 3.19)

set(expandArguments)
if(EXPAND)
    set(expandArguments --expand ${EXPAND})
endif()
set(screenshotArguments)
if(SCREENSHOT)
    set(screenshotArguments --screenshot ${SCREENSHOT})
endif()
file(REMOVE ${DUMP})
# The first read of a display option that was never written answers its default and stores a
# value that later reads take for "shown": whatever another test of the prefix read before, the
# add-in starts here from no options at all.
if(WINE)
    execute_process(COMMAND ${WINE} reg delete "HKEY_CLASSES_ROOT\\Quorlin.Arbolet\\DisplayOptions" /f
                    OUTPUT_QUIET ERROR_QUIET)
endif()
execute_process(COMMAND ${VB6HOST} --connect-mode 1 ${HOST_OPTIONS} --dump-tree ${DUMP}
                        ${expandArguments} ${screenshotArguments} ${PROJECT}
                OUTPUT_VARIABLE hostOutput ERROR_VARIABLE hostOutput)
if(NOT hostOutput MATCHES "vb6host: all steps passed")
    message(FATAL_ERROR "vb6host did not pass:\n${hostOutput}")
endif()
if(HOST_EXPECT)
    string(FIND "${hostOutput}" "${HOST_EXPECT}" found)
    if(found EQUAL -1)
        message(FATAL_ERROR "vb6host did not print \"${HOST_EXPECT}\":\n${hostOutput}")
    endif()
endif()
# The add-in reads its display options from the registry, where a fresh prefix has none: the
# defaults, which hide declarations, directives and the ends of blocks.
set(defaultDisplay --hide-variables --hide-constants --hide-compiler --hide-enums --hide-types
                   --hide-section-ends)
execute_process(COMMAND ${ARBOLET} tree --format json ${defaultDisplay} ${expandArguments} ${PROJECT}
                OUTPUT_VARIABLE expected RESULT_VARIABLE status ERROR_VARIABLE errors)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "arbolet tree failed (${status}): ${errors}")
endif()
file(READ ${DUMP} actual)

set(texts "")
# Compares the node lists at `path` (a list of JSON path elements) in both documents.
function(compare_nodes path where)
    string(JSON actualCount ERROR_VARIABLE failed LENGTH "${actual}" ${path})
    if(failed)
        message(FATAL_ERROR "the dump has no node list at ${where}: ${failed}")
    endif()
    string(JSON expectedCount LENGTH "${expected}" ${path})
    if(NOT actualCount EQUAL expectedCount)
        message(FATAL_ERROR
                "${where}: the tool window has ${actualCount} nodes, the tool ${expectedCount}")
    endif()
    if(actualCount EQUAL 0)
        return()
    endif()
    math(EXPR last "${actualCount} - 1")
    foreach(i RANGE ${last})
        string(JSON actualText GET "${actual}" ${path} ${i} text)
        string(JSON expectedText GET "${expected}" ${path} ${i} text)
        if(NOT actualText STREQUAL expectedText)
            message(FATAL_ERROR "${where}, node ${i}: \"${actualText}\" instead of \"${expectedText}\"")
        endif()
        set_property(GLOBAL APPEND PROPERTY compared_texts "${actualText}")
        compare_nodes("${path};${i};children" "${where} > ${actualText}")
    endforeach()
endfunction()

compare_nodes("nodes" "the tree")
get_property(seen GLOBAL PROPERTY compared_texts)
foreach(text IN LISTS EXPECT)
    if(NOT text IN_LIST seen)
        message(FATAL_ERROR "the tree lacks \"${text}\"; it has: ${seen}")
    endif()
endforeach()
list(LENGTH seen count)
message(STATUS "the tool window shows the same ${count} nodes as arbolet tree")
