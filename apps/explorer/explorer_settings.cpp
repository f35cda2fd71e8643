// The explorer's settings as plain registry values of one key.
#include "explorer_settings.h"

#include <algorithm>

namespace arbolet::explorer_app {
namespace {

constexpr const wchar_t* kKey = L"Software\\Arbolet\\Explorer";

std::optional<std::wstring> ReadText(const wchar_t* name) {
    DWORD size = 0;
    if (RegGetValueW(HKEY_CURRENT_USER, kKey, name, RRF_RT_REG_SZ, nullptr, nullptr, &size) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    std::wstring value(size / sizeof(wchar_t) + 1, L'\0');
    size = static_cast<DWORD>(value.size() * sizeof(wchar_t));
    if (RegGetValueW(HKEY_CURRENT_USER, kKey, name, RRF_RT_REG_SZ, nullptr, value.data(), &size) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    value.resize(wcslen(value.c_str()));
    return value;
}

void WriteText(const wchar_t* name, const std::wstring& value) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name, REG_SZ, value.c_str(),
                    static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

std::wstring RecentName(std::size_t index) {
    return L"Recent" + std::to_wstring(index + 1);
}

// Windows file names ignore case.
void EraseFile(std::vector<std::filesystem::path>& list, const std::filesystem::path& file) {
    const auto same = [&](const std::filesystem::path& other) {
        return _wcsicmp(other.c_str(), file.c_str()) == 0;
    };
    list.erase(std::remove_if(list.begin(), list.end(), same), list.end());
}

// The list is read up to its first empty entry, so a shorter list ends with one.
void WriteRecentFiles(const std::vector<std::filesystem::path>& list) {
    for (std::size_t i = 0; i < kMaxRecentFiles; ++i)
        WriteText(RecentName(i).c_str(), i < list.size() ? list[i].wstring() : std::wstring());
}

}  // namespace

std::vector<std::filesystem::path> RecentFiles() {
    std::vector<std::filesystem::path> files;
    for (std::size_t i = 0; i < kMaxRecentFiles; ++i) {
        const auto file = ReadText(RecentName(i).c_str());
        if (!file || file->empty()) break;
        files.emplace_back(*file);
    }
    return files;
}

std::vector<std::filesystem::path> WithRecentFile(std::vector<std::filesystem::path> list,
                                                  const std::filesystem::path& file) {
    EraseFile(list, file);
    list.insert(list.begin(), file);
    if (list.size() > kMaxRecentFiles) list.resize(kMaxRecentFiles);
    return list;
}

void AddRecentFile(const std::filesystem::path& file) {
    WriteRecentFiles(WithRecentFile(RecentFiles(), file));
}

void RemoveRecentFile(const std::filesystem::path& file) {
    auto list = RecentFiles();
    EraseFile(list, file);
    WriteRecentFiles(list);
}

std::optional<WINDOWPLACEMENT> SavedPlacement() {
    WINDOWPLACEMENT placement{};
    DWORD size = sizeof(placement);
    if (RegGetValueW(HKEY_CURRENT_USER, kKey, L"Placement", RRF_RT_REG_BINARY, nullptr, &placement,
                     &size) != ERROR_SUCCESS ||
        size != sizeof(placement) || placement.length != sizeof(placement)) {
        return std::nullopt;
    }
    return placement;
}

void SavePlacement(const WINDOWPLACEMENT& placement) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"Placement", REG_BINARY, &placement,
                    sizeof(placement));
}

std::wstring EditorCommand() {
    return ReadText(L"Editor").value_or(L"");
}

void SetEditorCommand(const std::wstring& command) {
    WriteText(L"Editor", command);
}

}  // namespace arbolet::explorer_app
