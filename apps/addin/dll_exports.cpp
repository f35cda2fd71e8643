// Arbolet.dll's entry points: the class objects, the unload test, and self-registration
// (regsvr32 for the machine, regsvr32 /n /i:user for the current user only).
#include <windows.h>

#include <olectl.h>

#include <cwchar>
#include <string>

#include "windows/addin/class_table.h"
#include "windows/addin/module_instance.h"
#include "windows/addin/registration.h"
#include "windows/com/ref_count.h"

namespace {

using arbolet::windows::addin::ClassScope;

std::wstring DllPath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(arbolet::windows::addin::ThisModule(), path.data(),
                                                static_cast<DWORD>(path.size()));
        if (length == 0) return {};
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

HRESULT Register(ClassScope scope) noexcept {
    try {
        const std::wstring path = DllPath();
        if (path.empty()) return SELFREG_E_CLASS;
        return arbolet::windows::addin::RegisterAddIn(path, scope);
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace

extern "C" {

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved) {
    // At FreeLibrary (not at process exit) the window classes go with the code they point to.
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr) {
        arbolet::windows::addin::UnregisterWindowClasses();
    }
    return TRUE;
}

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
    return arbolet::windows::com::GetClassObject(arbolet::windows::addin::AddInClasses(), clsid,
                                                 iid, object);
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() {
    return arbolet::windows::com::module::ActiveCount() == 0 ? S_OK : S_FALSE;
}

HRESULT STDAPICALLTYPE DllRegisterServer() {
    return Register(ClassScope::Machine);
}

HRESULT STDAPICALLTYPE DllUnregisterServer() {
    return arbolet::windows::addin::UnregisterAddIn(ClassScope::Machine);
}

// "user" registers the classes for the current user only; nothing else is accepted.
HRESULT STDAPICALLTYPE DllInstall(BOOL install, LPCWSTR commandLine) {
    if (commandLine == nullptr || _wcsicmp(commandLine, L"user") != 0) return E_INVALIDARG;
    return install ? Register(ClassScope::User)
                   : arbolet::windows::addin::UnregisterAddIn(ClassScope::User);
}

}  // extern "C"
