# Cross toolchain for 32-bit Windows (i686-w64-mingw32): what the VB6 IDE loads and what ships.
# Its tests run where 32-bit Wine (Debian's wine32, i386 multiarch) is installed; otherwise
# they are built and not run.
set(CMAKE_SYSTEM_PROCESSOR X86)
set(ARBOLET_MINGW_TRIPLE i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)

# CTest starts every test executable through 32-bit Wine when it is there.
find_program(ARBOLET_WINE32 NAMES wine PATHS /usr/lib/wine /usr/lib/i386-linux-gnu/wine
             NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
if(ARBOLET_WINE32)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${ARBOLET_WINE32})
endif()
