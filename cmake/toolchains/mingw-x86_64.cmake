# Cross toolchain for 64-bit Windows (x86_64-w64-mingw32): the build whose tests run under wine64.
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(ARBOLET_MINGW_TRIPLE x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)

# CTest starts every test executable through wine64.
find_program(ARBOLET_WINE64 NAMES wine64 PATHS /usr/lib/wine /usr/lib64/wine NO_CMAKE_FIND_ROOT_PATH)
if(ARBOLET_WINE64)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${ARBOLET_WINE64})
endif()
