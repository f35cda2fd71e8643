// Loaded modules and holds, for running an installed add-in (see installed_addin.h).
#include "vb6host/installed_addin.h"

#include <tlhelp32.h>

namespace arbolet::vb6host {
namespace {

std::wstring FileNameOf(const std::wstring& path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    return slash == std::wstring::npos ? path : path.substr(slash + 1);
}

struct Handle {
    explicit Handle(HANDLE handle) : value(handle) {}
    ~Handle() {
        if (value != nullptr && value != INVALID_HANDLE_VALUE) CloseHandle(value);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    HANDLE value;
};

}  // namespace

std::vector<std::wstring> LoadedModulePaths(const std::wstring& fileName) {
    std::vector<std::wstring> paths;
    const Handle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, GetCurrentProcessId()));
    if (snapshot.value == INVALID_HANDLE_VALUE) return paths;
    MODULEENTRY32W module{};
    module.dwSize = sizeof module;
    for (BOOL more = Module32FirstW(snapshot.value, &module); more;
         more = Module32NextW(snapshot.value, &module)) {
        if (_wcsicmp(FileNameOf(module.szExePath).c_str(), fileName.c_str()) == 0)
            paths.emplace_back(module.szExePath);
    }
    return paths;
}

std::wstring HeldEventName(const std::wstring& name) {
    return name + L".held";
}

std::wstring ReleaseEventName(const std::wstring& name) {
    return name + L".release";
}

bool HoldUntilReleased(const std::wstring& name, DWORD timeoutMilliseconds) {
    const Handle held(CreateEventW(nullptr, TRUE, FALSE, HeldEventName(name).c_str()));
    const Handle release(CreateEventW(nullptr, TRUE, FALSE, ReleaseEventName(name).c_str()));
    if (held.value == nullptr || release.value == nullptr || !SetEvent(held.value)) return false;
    const DWORD end = GetTickCount() + timeoutMilliseconds;
    for (;;) {
        const DWORD left = end - GetTickCount();
        if (static_cast<LONG>(left) <= 0) return false;
        const DWORD woken = MsgWaitForMultipleObjects(1, &release.value, FALSE, left, QS_ALLINPUT);
        if (woken == WAIT_OBJECT_0) return true;
        if (woken != WAIT_OBJECT_0 + 1) return false;
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

}  // namespace arbolet::vb6host
