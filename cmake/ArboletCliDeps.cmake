# Header-only use of Debian's CLI11, nlohmann-json and fmt, so that the same tool also
# cross-compiles for Windows. Only those three include folders are exposed to the build, never
# the whole of /usr/include.
include_guard(GLOBAL)

set(ARBOLET_CLI_INCLUDE ${CMAKE_BINARY_DIR}/_deps/cli-include)
foreach(dir CLI nlohmann fmt)
    if(NOT EXISTS /usr/include/${dir})
        message(FATAL_ERROR "/usr/include/${dir} is missing: install libcli11-dev, nlohmann-json3-dev and libfmt-dev")
    endif()
    file(MAKE_DIRECTORY ${ARBOLET_CLI_INCLUDE})
    file(CREATE_LINK /usr/include/${dir} ${ARBOLET_CLI_INCLUDE}/${dir} SYMBOLIC)
endforeach()

add_library(arbolet_cli_deps INTERFACE)
target_include_directories(arbolet_cli_deps SYSTEM INTERFACE ${ARBOLET_CLI_INCLUDE})
target_compile_definitions(arbolet_cli_deps INTERFACE FMT_HEADER_ONLY=1)
