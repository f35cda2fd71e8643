// Direct registry access for tests, independent of the class under test: what is really stored,
// and values planted in forms the class would never write itself.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace arbolet::windows::testing {

struct RawValue {
    DWORD type = REG_NONE;
    std::string data;  // the stored bytes, exactly

    friend bool operator==(const RawValue&, const RawValue&) = default;
};

inline std::optional<RawValue> ReadRaw(HKEY root, const std::string& path,
                                       const std::string& name) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, path.c_str(), 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return {};
    RawValue value;
    DWORD size = 0;
    LONG status = RegQueryValueExA(key, name.c_str(), nullptr, &value.type, nullptr, &size);
    if (status == ERROR_SUCCESS) {
        value.data.resize(size);
        status = RegQueryValueExA(key, name.c_str(), nullptr, nullptr,
                                  reinterpret_cast<BYTE*>(value.data.data()), &size);
    }
    RegCloseKey(key);
    if (status != ERROR_SUCCESS) return {};
    return value;
}

inline void WriteRaw(HKEY root, const std::string& path, const std::string& name, DWORD type,
                     std::string_view data) {
    HKEY key = nullptr;
    if (RegCreateKeyExA(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr) != ERROR_SUCCESS) {
        return;
    }
    RegSetValueExA(key, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(data.data()),
                   static_cast<DWORD>(data.size()));
    RegCloseKey(key);
}

// Creates one sub-key by a name relative to its parent, as names near the length limit only
// fit that way.
inline bool CreateSubKey(HKEY root, const std::string& parent, const std::string& name) {
    HKEY parentKey = nullptr;
    if (RegCreateKeyExA(root, parent.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &parentKey,
                        nullptr) != ERROR_SUCCESS) {
        return false;
    }
    HKEY key = nullptr;
    const LONG status = RegCreateKeyExA(parentKey, name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                        nullptr, &key, nullptr);
    if (status == ERROR_SUCCESS) RegCloseKey(key);
    RegCloseKey(parentKey);
    return status == ERROR_SUCCESS;
}

inline std::string DwordBytes(DWORD number) {
    return std::string(reinterpret_cast<const char*>(&number), sizeof number);
}

inline bool KeyPresent(HKEY root, const std::string& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, path.c_str(), 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

inline void DeleteTree(HKEY root, const std::string& path) {
    RegDeleteTreeA(root, path.c_str());
}

}  // namespace arbolet::windows::testing
