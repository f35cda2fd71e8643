// Finds the file name of the module that contains this code, not of the host process: inside
// the VB6 IDE that is the add-in DLL rather than VB6.EXE.
#include "windows/base/module_name.h"

#include <windows.h>

#include <string_view>
#include <vector>

#include "windows/base/ansi_text.h"

namespace arbolet::windows {
namespace {

std::wstring ModulePath(HMODULE module) {
    std::vector<wchar_t> buffer(MAX_PATH);
    for (;;) {
        const DWORD size = static_cast<DWORD>(buffer.size());
        const DWORD length = GetModuleFileNameW(module, buffer.data(), size);
        if (length == 0) return {};
        if (length < size) return std::wstring(buffer.data(), length);
        buffer.resize(buffer.size() * 2);
    }
}

std::string BaseNameWithoutExtension(std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    if (slash != std::wstring_view::npos) path.remove_prefix(slash + 1);
    const std::size_t dot = path.find_last_of(L'.');
    if (dot != std::wstring_view::npos) path = path.substr(0, dot);
    return WideToUtf8(path);
}

std::string FindRunningModuleName() {
    HMODULE module = nullptr;
    const DWORD flags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&FindRunningModuleName), &module)) {
        module = nullptr;  // the process's own executable
    }
    return BaseNameWithoutExtension(ModulePath(module));
}

}  // namespace

const std::string& RunningModuleName() {
    static const std::string name = FindRunningModuleName();
    return name;
}

}  // namespace arbolet::windows
