// Registers the window classes of the dialogs' own controls in Arbolet's module, where the
// dialogs (created with that module's instance) look for them.
#pragma once

#include <windows.h>

#include "windows/base/own_module.h"

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

// The messages every self-drawn control of the dialogs answers alike: painting, on the screen
// and into a device context it is given, and no background erasing, which would flicker.
// Sets `result` and answers true when the message was one of them.
template <void (*Paint)(HWND, HDC)>
bool HandlePaintMessages(HWND hWnd, UINT iMsg, WPARAM wParam, LRESULT& result) noexcept {
    switch (iMsg) {
        case WM_PAINT: {
            PAINTSTRUCT ps;
            Paint(hWnd, BeginPaint(hWnd, &ps));
            EndPaint(hWnd, &ps);
            result = 0;
            return true;
        }
        case WM_PRINTCLIENT:
            Paint(hWnd, reinterpret_cast<HDC>(wParam));
            result = 0;
            return true;
        case WM_ERASEBKGND:
            result = 1;
            return true;
        default:
            return false;
    }
}

}  // namespace arbolet::windows::dialogs
