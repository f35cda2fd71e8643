// This module's handle and its window classes.
#include "windows/addin/module_instance.h"

#include <string>
#include <vector>

namespace arbolet::windows::addin {
namespace {
std::vector<std::wstring>& RegisteredClasses() {
    static std::vector<std::wstring> classes;
    return classes;
}
}  // namespace

HINSTANCE ThisModule() noexcept {
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&ThisModule), &module);
    return module;
}

bool RegisterWindowClassOnce(const wchar_t* name, WNDPROC procedure) noexcept {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    if (GetClassInfoExW(ThisModule(), name, &windowClass)) return true;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = ThisModule();
    windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    windowClass.lpszClassName = name;
    if (RegisterClassExW(&windowClass) == 0) return false;
    try {
        RegisteredClasses().emplace_back(name);
    } catch (...) {
    }
    return true;
}

void UnregisterWindowClasses() noexcept {
    for (const std::wstring& name : RegisteredClasses())
        UnregisterClassW(name.c_str(), ThisModule());
    RegisteredClasses().clear();
}

}  // namespace arbolet::windows::addin
