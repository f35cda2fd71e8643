// The module that Arbolet's Windows code is linked into: the add-in DLL inside the VB6 IDE, or
// a program. Resources, window classes and the help file are looked up there, never in the
// process's main program, which inside the IDE is VB6.EXE.
#pragma once

#include <windows.h>

namespace arbolet::windows {

inline HMODULE OwnModule() noexcept {
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&OwnModule), &module);
    return module;
}

}  // namespace arbolet::windows
