# Shared compile settings for every Arbolet target: language level, warnings, sanitizers.
include_guard(GLOBAL)

option(ARBOLET_WERROR "Treat compiler warnings as errors" OFF)
option(ARBOLET_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(ARBOLET_PCH "Precompile the large standard and third-party headers most files include" ON)

# The standard headers nearly every file of Arbolet includes.
set(ARBOLET_STANDARD_HEADERS <algorithm> <cstdint> <filesystem> <functional> <map> <memory>
                             <optional> <set> <sstream> <string> <string_view> <unordered_map>
                             <utility> <vector>)

function(arbolet_defaults target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow)
    # GCC 12 reports false -Wrestrict overlaps inside std::string when it inlines at -O3
    # (fixed in GCC 13); the warning says nothing about this code.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
    if(ARBOLET_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(ARBOLET_SANITIZE)
        target_compile_options(${target} PUBLIC -fsanitize=address,undefined -fno-omit-frame-pointer
                                                -fno-sanitize-recover=undefined)
        target_link_options(${target} PUBLIC -fsanitize=address,undefined)
    endif()
endfunction()

# A core library: portable, no platform headers, no I/O.
function(arbolet_core_library name)
    add_library(${name} STATIC ${ARGN})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    arbolet_defaults(${name})
endfunction()

# Precompiles `headers` (standard and third-party ones only, which never change while one works
# on Arbolet) for `target`: its files then read them once, not once each. The header text is
# still included wherever the precompiled one cannot be used.
function(arbolet_precompile target)
    if(ARBOLET_PCH)
        target_precompile_headers(${target} PRIVATE ${ARGN})
        target_compile_options(${target} PRIVATE -Winvalid-pch)
    endif()
endfunction()

# Called at the top of each folder of tests. Test code is compiled at -O1 in optimised builds:
# GoogleTest's large test bodies take far longer to optimise than they then gain at run time,
# and the code under test keeps the build's own optimisation.
function(arbolet_test_folder)
    if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
        add_compile_options(-O1)
    endif()
endfunction()

# The headers every test program includes, compiled once for all of them (tests/support). Its
# target has the test programs' settings, as sharing a precompiled header requires.
function(arbolet_test_headers target)
    target_link_libraries(${target} PUBLIC GTest::gtest arbolet_cli_deps)
    target_compile_definitions(${target} PRIVATE ARBOLET_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    arbolet_precompile(${target} <gtest/gtest.h> <nlohmann/json.hpp> ${ARBOLET_STANDARD_HEADERS})
endfunction()

# One GoogleTest executable registered as one CTest test. Under a cross build the
# emulator (Wine) runs it; discovery at build time would start Wine once per test.
function(arbolet_test name)
    cmake_parse_arguments(T "" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${T_SOURCES})
    target_link_libraries(${name} PRIVATE ${T_LIBS} GTest::gtest GTest::gtest_main)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${name} PRIVATE ARBOLET_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    arbolet_defaults(${name})
    # At -O1 GCC 12 sees out-of-bounds copies in std::string and std::wstring built from short
    # literals that cannot happen (fixed in GCC 13), as it sees overlaps (-Wrestrict) at every
    # level.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${name} PRIVATE -Wno-array-bounds -Wno-stringop-overread)
    endif()
    if(ARBOLET_PCH AND TARGET arbolet_test_support)
        target_precompile_headers(${name} REUSE_FROM arbolet_test_support)
        target_link_libraries(${name} PRIVATE arbolet_cli_deps)
        target_compile_options(${name} PRIVATE -Winvalid-pch)
    endif()
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
    if(COMMAND arbolet_wine_test)
        arbolet_wine_test(${name})
    endif()
endfunction()
