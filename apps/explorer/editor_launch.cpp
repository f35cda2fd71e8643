// Starting the user's editor for a file and line.
#include "editor_launch.h"

#include <shellapi.h>

#include "explorer_settings.h"

namespace arbolet::explorer_app {

std::wstring ExpandEditorCommand(std::wstring_view command, const std::filesystem::path& file,
                                 std::int32_t line) {
    std::wstring result;
    for (std::size_t i = 0; i < command.size();) {
        if (command.substr(i).starts_with(L"{file}")) {
            result += file.wstring();
            i += 6;
        } else if (command.substr(i).starts_with(L"{line}")) {
            result += std::to_wstring(line);
            i += 6;
        } else {
            result += command[i++];
        }
    }
    return result;
}

bool OpenInEditor(HWND owner, const std::filesystem::path& file, std::int32_t line) {
    const std::wstring command = EditorCommand();
    if (command.empty()) {
        const auto result = reinterpret_cast<INT_PTR>(
            ShellExecuteW(owner, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
        if (result > 32) return true;
    } else {
        std::wstring line_ = ExpandEditorCommand(command, file, line);
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process{};
        if (CreateProcessW(nullptr, line_.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                           &startup, &process)) {
            CloseHandle(process.hThread);
            CloseHandle(process.hProcess);
            return true;
        }
    }
    const std::wstring message = L"Cannot open " + file.wstring() +
                                 L" in the editor.\r\nChoose an editor under Options > Editor.";
    MessageBoxW(owner, message.c_str(), L"Arbolet Explorer", MB_OK | MB_ICONINFORMATION);
    return false;
}

}  // namespace arbolet::explorer_app
