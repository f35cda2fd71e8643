// The help file's path and the two ways of opening it. hhctrl.ocx is loaded on demand, so that
// Arbolet does not need it to start and a machine without it still gets its help through the
// shell.
#include "windows/dialogs/help.h"

#include <shellapi.h>

#include <vector>

#include "windows/base/own_module.h"

namespace arbolet::windows::dialogs {
namespace {

constexpr UINT kHhDisplayTopic = 0;  // HH_DISPLAY_TOPIC

using HtmlHelpFunction = HWND(WINAPI*)(HWND, LPCSTR, UINT, DWORD_PTR);

HtmlHelpFunction LoadHtmlHelp() {
    static const HtmlHelpFunction function = [] {
        HMODULE library = LoadLibraryA("hhctrl.ocx");
        return library != nullptr ? reinterpret_cast<HtmlHelpFunction>(reinterpret_cast<void*>(
                                        GetProcAddress(library, "HtmlHelpA")))
                                  : nullptr;
    }();
    return function;
}

std::string ModuleFolder() {
    std::vector<char> buffer(MAX_PATH);
    for (;;) {
        const DWORD length =
            GetModuleFileNameA(OwnModule(), buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length == 0) return {};
        if (length < buffer.size()) {
            std::string path(buffer.data(), length);
            const std::size_t slash = path.find_last_of("\\/");
            // "C:\Arbolet.dll" keeps its "\": the folder is the drive's root.
            return slash == std::string::npos ? std::string{}
                                              : path.substr(0, slash + (slash == 2 ? 1 : 0));
        }
        buffer.resize(buffer.size() * 2);
    }
}

bool FileExists(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

}  // namespace

std::string HelpFilePath(std::string_view folder) {
    std::string path(folder);
    if (path.empty() || path.back() != '\\') path += '\\';
    return path + kHelpFileName;
}

std::string DefaultHelpFile() {
    return HelpFilePath(ModuleFolder());
}

bool ShowHelp(HWND hWndOwner, const std::string& helpFile, std::string_view topic) {
    if (!FileExists(helpFile)) return false;
    if (const HtmlHelpFunction htmlHelp = LoadHtmlHelp()) {
        std::string target = helpFile;
        if (!topic.empty()) target += "::/" + std::string(topic);
        if (htmlHelp(hWndOwner, target.c_str(), kHhDisplayTopic, 0) != nullptr) return true;
    }
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteA(hWndOwner, "open", helpFile.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    return result > 32;
}

}  // namespace arbolet::windows::dialogs
