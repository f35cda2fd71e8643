# Running the cross-built Windows tests under Wine from CTest.
#
# Every CTest run boots a throwaway Wine prefix in the build tree before the first test
# (fixture "wine") and removes it after the last, so that tests which write to the registry
# never see what an earlier run left behind. One Wine server stays up for the whole run, so each
# test pays only for starting its own process. An X server (Xvfb) is started for the run only
# when some test needs windows.
#
# Tests with windows take the keyboard focus of their display, so on one display they run one
# at a time (RESOURCE_LOCK keyboard_focus). To let them run side by side, a test folder can move
# its tests to another lane (arbolet_wine_lane): a prefix of its own, with its own Wine server
# and X display, whose fixture, focus lock and installer lock are the lane's.
include_guard(GLOBAL)

find_program(ARBOLET_WINESERVER NAMES wineserver64 wineserver PATHS /usr/lib/wine /usr/lib64/wine
             NO_CMAKE_FIND_ROOT_PATH REQUIRED)

set(ARBOLET_WINE_SCRIPT ${PROJECT_SOURCE_DIR}/scripts/wine-prefix.sh)
set(ARBOLET_WINE_ENVIRONMENT
    WINEPREFIX=${CMAKE_BINARY_DIR}/wine-prefix
    WINELOADER=${CMAKE_CROSSCOMPILING_EMULATOR}
    WINESERVER=${ARBOLET_WINESERVER}
    WINEDEBUG=-all
    # No Mono or Gecko: nothing here needs them, and installing them would take minutes.
    WINEDLLOVERRIDES=mscoree,mshtml=)
set_property(GLOBAL PROPERTY ARBOLET_WINE_LANES_USED 0)

# Makes a registered test run inside the run's Wine prefix, started through the script so that
# it finds the run's X display when there is one.
# A program that Wine cannot start (a 32-bit one without 32-bit Wine) still exits 0, so the test
# passes only when GoogleTest printed its summary, and fails when it reported a failure.
function(arbolet_wine_test name)
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine
                                            ENVIRONMENT "${ARBOLET_WINE_ENVIRONMENT}"
                                            PASS_REGULAR_EXPRESSION "\\[  PASSED  \\]"
                                            FAIL_REGULAR_EXPRESSION "\\[  FAILED  \\]")
    if(TARGET ${name})
        set_target_properties(${name} PROPERTIES
            CROSSCOMPILING_EMULATOR "${ARBOLET_WINE_SCRIPT};run;${CMAKE_CROSSCOMPILING_EMULATOR}")
    endif()
endfunction()

# Marks a test that opens windows: the whole run then gets an X display, since Wine fixes its
# desktop's graphics driver when the prefix boots.
function(arbolet_wine_display name)
    find_program(ARBOLET_XVFB Xvfb REQUIRED)
    set_property(GLOBAL PROPERTY ARBOLET_WINE_NEEDS_DISPLAY ON)
endfunction()

# Moves every Wine test of the calling folder (those that run in the prefix of lane 0) to lane
# `lane`, once the folder has defined them all.
function(arbolet_wine_lane lane)
    if(lane GREATER 0)
        set_property(GLOBAL APPEND PROPERTY ARBOLET_WINE_LANES_USED ${lane})
        # A deferred call reads variables when it runs, so the lane goes in as text.
        cmake_language(EVAL CODE "cmake_language(DEFER CALL _arbolet_wine_move_tests ${lane})")
    endif()
endfunction()

function(_arbolet_wine_move_tests lane)
    get_property(tests DIRECTORY PROPERTY TESTS)
    foreach(test IN LISTS tests)
        get_test_property(${test} ENVIRONMENT environment)
        list(FIND environment "WINEPREFIX=${CMAKE_BINARY_DIR}/wine-prefix" at)
        if(at LESS 0)
            continue()
        endif()
        list(TRANSFORM environment REPLACE "^WINEPREFIX=.*" "WINEPREFIX=${CMAKE_BINARY_DIR}/wine-prefix${lane}")
        set_tests_properties(${test} PROPERTIES ENVIRONMENT "${environment}")
        get_test_property(${test} FIXTURES_REQUIRED fixtures)
        if(fixtures)
            list(TRANSFORM fixtures REPLACE "^wine$" "wine${lane}")
            set_tests_properties(${test} PROPERTIES FIXTURES_REQUIRED "${fixtures}")
        endif()
        get_test_property(${test} RESOURCE_LOCK locks)
        if(locks)
            list(TRANSFORM locks REPLACE "^(keyboard_focus|windows_installer)$" "\\1${lane}")
            set_tests_properties(${test} PROPERTIES RESOURCE_LOCK "${locks}")
        endif()
    endforeach()
endfunction()

# The fixture's tests are added once every test is known, to learn whether a display is needed.
# Each lane in use boots its own prefix.
function(_arbolet_wine_fixture)
    get_property(display GLOBAL PROPERTY ARBOLET_WINE_NEEDS_DISPLAY)
    get_property(lanes GLOBAL PROPERTY ARBOLET_WINE_LANES_USED)
    list(REMOVE_DUPLICATES lanes)
    foreach(lane IN LISTS lanes)
        set(suffix ${lane})
        if(lane EQUAL 0)
            set(suffix "")
        endif()
        set(environment ${ARBOLET_WINE_ENVIRONMENT})
        list(TRANSFORM environment REPLACE "^WINEPREFIX=.*" "WINEPREFIX=${CMAKE_BINARY_DIR}/wine-prefix${suffix}")
        set(startArguments start ${CMAKE_BINARY_DIR}/wine-startup${suffix}.txt)
        if(display)
            list(APPEND startArguments --display)
        endif()
        add_test(NAME wine_prefix_start${suffix} COMMAND ${ARBOLET_WINE_SCRIPT} ${startArguments})
        add_test(NAME wine_prefix_stop${suffix} COMMAND ${ARBOLET_WINE_SCRIPT} stop)
        set_tests_properties(wine_prefix_start${suffix} PROPERTIES FIXTURES_SETUP wine${suffix}
                                                                   ENVIRONMENT "${environment}")
        set_tests_properties(wine_prefix_stop${suffix} PROPERTIES FIXTURES_CLEANUP wine${suffix}
                                                                  ENVIRONMENT "${environment}")
    endforeach()
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL _arbolet_wine_fixture)
