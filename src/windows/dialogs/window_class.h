// Registers the window classes of the dialogs' own controls in Arbolet's module, where the
// dialogs (created with that module's instance) look for them.
#pragma once

#include <windows.h>

#include "windows/own_module.h"

namespace arbolet::windows::dialogs {

// Registers the class and answers its name; registering again fails harmlessly.
inline const wchar_t* RegisterControlClass(const wchar_t* name, WNDPROC proc,
                                           LPCSTR cursor) noexcept {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = proc;
    windowClass.hInstance = OwnModule();
    windowClass.hCursor = LoadCursorA(nullptr, cursor);
    windowClass.lpszClassName = name;
    RegisterClassW(&windowClass);
    return name;
}

}  // namespace arbolet::windows::dialogs
