// The module (the add-in DLL, or a test executable linking the add-in's code) that holds this
// code: window classes are registered for it and removed again before it unloads, so that a
// reloaded DLL never finds a class whose procedure points into freed code.
#pragma once

#include <windows.h>

namespace arbolet::windows::addin {

HINSTANCE ThisModule() noexcept;
// Registers a window class of this module once; answers false when it cannot.
bool RegisterWindowClassOnce(const wchar_t* name, WNDPROC procedure) noexcept;
// Unregisters every class RegisterWindowClassOnce registered (at DLL unload).
void UnregisterWindowClasses() noexcept;

}  // namespace arbolet::windows::addin
