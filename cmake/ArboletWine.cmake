# Running the cross-built Windows tests under Wine from CTest.
#
# Every CTest run boots a throwaway Wine prefix in the build tree before the first test
# (fixture "wine") and removes it after the last, so that tests which write to the registry
# never see what an earlier run left behind. One Wine server stays up for the whole run, so each
# test pays only for starting its own process.
include_guard(GLOBAL)

find_program(ARBOLET_WINESERVER NAMES wineserver64 wineserver PATHS /usr/lib/wine /usr/lib64/wine
             NO_CMAKE_FIND_ROOT_PATH REQUIRED)

set(ARBOLET_WINE_PREFIX ${CMAKE_BINARY_DIR}/wine-prefix)
set(ARBOLET_WINE_ENVIRONMENT
    WINEPREFIX=${ARBOLET_WINE_PREFIX}
    WINELOADER=${CMAKE_CROSSCOMPILING_EMULATOR}
    WINESERVER=${ARBOLET_WINESERVER}
    WINEDEBUG=-all
    # No Mono or Gecko: nothing here needs them, and installing them would take minutes.
    WINEDLLOVERRIDES=mscoree,mshtml=)

set(_arbolet_wine_script ${PROJECT_SOURCE_DIR}/scripts/wine-prefix.sh)
add_test(NAME wine_prefix_start COMMAND ${_arbolet_wine_script} start
                                        ${CMAKE_BINARY_DIR}/wine-startup.txt)
add_test(NAME wine_prefix_stop COMMAND ${_arbolet_wine_script} stop)
set_tests_properties(wine_prefix_start PROPERTIES FIXTURES_SETUP wine
                                                  ENVIRONMENT "${ARBOLET_WINE_ENVIRONMENT}")
set_tests_properties(wine_prefix_stop PROPERTIES FIXTURES_CLEANUP wine
                                                 ENVIRONMENT "${ARBOLET_WINE_ENVIRONMENT}")

# Makes a registered test run inside the run's Wine prefix.
function(arbolet_wine_test name)
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine
                                            ENVIRONMENT "${ARBOLET_WINE_ENVIRONMENT}")
endfunction()

# For test executables that open windows: each run gets its own Xvfb display. Tests without
# windows do without, as an X server costs start-up time.
function(arbolet_wine_display target)
    find_program(ARBOLET_XVFB_RUN xvfb-run REQUIRED)
    set_target_properties(${target} PROPERTIES
        CROSSCOMPILING_EMULATOR "${ARBOLET_XVFB_RUN};--auto-servernum;${CMAKE_CROSSCOMPILING_EMULATOR}")
endfunction()
