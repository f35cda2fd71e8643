# Running the cross-built Windows tests under Wine from CTest.
#
# Every CTest run boots a throwaway Wine prefix in the build tree before the first test
# (fixture "wine") and removes it after the last, so that tests which write to the registry
# never see what an earlier run left behind. One Wine server stays up for the whole run, so each
# test pays only for starting its own process. An X server (Xvfb) is started for the run only
# when some test needs windows.
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

# The fixture's tests are added once every test is known, to learn whether a display is needed.
function(_arbolet_wine_fixture)
    get_property(display GLOBAL PROPERTY ARBOLET_WINE_NEEDS_DISPLAY)
    set(startArguments start ${CMAKE_BINARY_DIR}/wine-startup.txt)
    if(display)
        list(APPEND startArguments --display)
    endif()
    add_test(NAME wine_prefix_start COMMAND ${ARBOLET_WINE_SCRIPT} ${startArguments})
    add_test(NAME wine_prefix_stop COMMAND ${ARBOLET_WINE_SCRIPT} stop)
    set_tests_properties(wine_prefix_start PROPERTIES FIXTURES_SETUP wine
                                                      ENVIRONMENT "${ARBOLET_WINE_ENVIRONMENT}")
    set_tests_properties(wine_prefix_stop PROPERTIES FIXTURES_CLEANUP wine
                                                     ENVIRONMENT "${ARBOLET_WINE_ENVIRONMENT}")
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL _arbolet_wine_fixture)
