// Locating the add-in DLL and running regsvr32 on it.
#include "addin/addin_dll.h"

#include <vector>

namespace arbolet::windows::testing {

std::wstring AddInDllPath() {
    const std::string unixPath = ARBOLET_ADDIN_DLL;
    std::wstring path = L"Z:";
    for (char c : unixPath)
        path += c == '/' ? L'\\' : static_cast<wchar_t>(c);
    return path;
}

DWORD RunProgram(const std::wstring& commandLine) {
    std::vector<wchar_t> text(commandLine.begin(), commandLine.end());
    text.push_back(L'\0');
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, text.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process)) {
        return static_cast<DWORD>(-1);
    }
    WaitForSingleObject(process.hProcess, 60000);
    DWORD code = static_cast<DWORD>(-1);
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

DWORD Regsvr32(const std::wstring& options) {
    return RunProgram(L"regsvr32.exe " + options + L" \"" + AddInDllPath() + L"\"");
}

}  // namespace arbolet::windows::testing
