# Cross toolchain for 32-bit Windows (i686-w64-mingw32): what the VB6 IDE loads and what ships.
# Its tests are built but not run (the machine has no 32-bit Wine).
set(CMAKE_SYSTEM_PROCESSOR X86)
set(ARBOLET_MINGW_TRIPLE i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
