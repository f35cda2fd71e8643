# Settings shared by the mingw-w64 cross toolchains; included by the per-architecture files,
# which set ARBOLET_MINGW_TRIPLE first.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_VERSION 6.1)

# The POSIX thread model, so that the standard library's threads and mutexes exist; winpthread
# is linked statically below like the rest of the runtime.
find_program(CMAKE_C_COMPILER NAMES ${ARBOLET_MINGW_TRIPLE}-gcc-posix ${ARBOLET_MINGW_TRIPLE}-gcc
             REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES ${ARBOLET_MINGW_TRIPLE}-g++-posix ${ARBOLET_MINGW_TRIPLE}-g++
             REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES ${ARBOLET_MINGW_TRIPLE}-windres REQUIRED)

set(CMAKE_FIND_ROOT_PATH /usr/${ARBOLET_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Executables and DLLs carry their runtime (libgcc, libstdc++, winpthread) inside: the add-in is
# loaded into the VB6 IDE's process, where no mingw DLLs can be expected, and Wine runs the tests
# without a search path for them.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

# Windows headers without min/max macros, at the API level of the oldest Windows supported (7).
add_compile_definitions(WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601)
