# Shared compile settings for every Arbolet target: language level, warnings, sanitizers.
include_guard(GLOBAL)

option(ARBOLET_WERROR "Treat compiler warnings as errors" OFF)
option(ARBOLET_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)

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

# One GoogleTest executable registered as one CTest test. Under a cross build the
# emulator (Wine) runs it; discovery at build time would start Wine once per test.
function(arbolet_test name)
    cmake_parse_arguments(T "" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${T_SOURCES})
    target_link_libraries(${name} PRIVATE ${T_LIBS} GTest::gtest GTest::gtest_main)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${name} PRIVATE ARBOLET_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    arbolet_defaults(${name})
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
    if(COMMAND arbolet_wine_test)
        arbolet_wine_test(${name})
    endif()
endfunction()
