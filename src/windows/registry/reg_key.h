// RegKey: owns an open registry key handle and closes it when it goes out of scope.
#pragma once

#include <windows.h>

namespace arbolet::windows {

class RegKey {
  public:
    RegKey() noexcept = default;
    explicit RegKey(HKEY key) noexcept : key_(key) {}
    RegKey(const RegKey&) = delete;
    RegKey& operator=(const RegKey&) = delete;
    RegKey(RegKey&& other) noexcept : key_(other.Detach()) {}
    RegKey& operator=(RegKey&& other) noexcept {
        if (this != &other) Reset(other.Detach());
        return *this;
    }
    ~RegKey() { Reset(); }

    HKEY Get() const noexcept { return key_; }
    explicit operator bool() const noexcept { return key_ != nullptr; }

    // The address to pass to RegOpenKeyEx and RegCreateKeyEx; closes the current key first.
    HKEY* Put() noexcept {
        Reset();
        return &key_;
    }

    // Gives up ownership: the caller keeps the handle open.
    HKEY Detach() noexcept {
        HKEY key = key_;
        key_ = nullptr;
        return key;
    }

    void Reset(HKEY key = nullptr) noexcept {
        if (key_ != nullptr) RegCloseKey(key_);
        key_ = key;
    }

  private:
    HKEY key_ = nullptr;
};

}  // namespace arbolet::windows
