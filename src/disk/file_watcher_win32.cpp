// The file watcher over ReadDirectoryChangesW (see file_watcher.h).
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <map>

#include "disk/file_io.h"
#include "disk/file_watcher.h"

namespace arbolet::disk {
namespace fs = std::filesystem;

namespace {

constexpr DWORD kFilter =
    FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE | FILE_NOTIFY_CHANGE_SIZE;
constexpr DWORD kPollSliceMs = 100;
constexpr int kMaxSettleRounds = 40;

// One watched folder: its handle and the pending overlapped read.
struct Folder {
    fs::path path;
    HANDLE handle = INVALID_HANDLE_VALUE;
    OVERLAPPED overlapped{};
    alignas(DWORD) std::array<char, 16384> buffer{};

    bool Start() {
        ResetEvent(overlapped.hEvent);
        return ReadDirectoryChangesW(handle, buffer.data(), static_cast<DWORD>(buffer.size()),
                                     FALSE, kFilter, nullptr, &overlapped, nullptr) != 0;
    }
};

}  // namespace

struct FileWatcher::Platform {
    std::vector<std::unique_ptr<Folder>> folders;

    ~Platform() {
        for (auto& folder : folders) {
            if (folder->handle != INVALID_HANDLE_VALUE) {
                CancelIo(folder->handle);
                CloseHandle(folder->handle);
            }
            if (folder->overlapped.hEvent != nullptr) CloseHandle(folder->overlapped.hEvent);
        }
    }

    // Waits up to `ms` for one folder's read to complete; nullptr on timeout or stop.
    Folder* Ready(std::chrono::milliseconds ms, const std::atomic<bool>& stop) {
        std::vector<HANDLE> events;
        for (auto& folder : folders)
            events.push_back(folder->overlapped.hEvent);
        const auto end = std::chrono::steady_clock::now() + ms;
        while (!stop && !events.empty()) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                end - std::chrono::steady_clock::now());
            if (left.count() < 0) return nullptr;
            const DWORD slice = static_cast<DWORD>(std::min<long long>(left.count(), kPollSliceMs));
            const DWORD result = WaitForMultipleObjects(static_cast<DWORD>(events.size()),
                                                        events.data(), FALSE, slice);
            if (result < WAIT_OBJECT_0 + events.size())
                return folders[result - WAIT_OBJECT_0].get();
        }
        return nullptr;
    }

    static void Collect(Folder& folder, std::vector<fs::path>& changed) {
        DWORD length = 0;
        if (GetOverlappedResult(folder.handle, &folder.overlapped, &length, FALSE) && length > 0) {
            for (DWORD at = 0;;) {
                FILE_NOTIFY_INFORMATION info;
                std::memcpy(&info, folder.buffer.data() + at, sizeof info);
                const auto* name = reinterpret_cast<const wchar_t*>(
                    folder.buffer.data() + at + offsetof(FILE_NOTIFY_INFORMATION, FileName));
                const fs::path file =
                    folder.path / std::wstring(name, info.FileNameLength / sizeof(wchar_t));
                if (std::find(changed.begin(), changed.end(), file) == changed.end()) {
                    changed.push_back(file);
                }
                if (info.NextEntryOffset == 0) break;
                at += info.NextEntryOffset;
            }
        }
        folder.Start();
    }
};

FileWatcher::FileWatcher(const std::vector<fs::path>& folders)
    : platform_(std::make_unique<Platform>()) {
    for (const fs::path& path : folders) {
        auto folder = std::make_unique<Folder>();
        folder->path = path;
        folder->handle =
            CreateFileW(path.c_str(), FILE_LIST_DIRECTORY,
                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr);
        folder->overlapped.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        const bool opened = folder->handle != INVALID_HANDLE_VALUE &&
                            folder->overlapped.hEvent != nullptr && folder->Start();
        platform_->folders.push_back(std::move(folder));
        if (!opened) throw FileError(path, "cannot watch the folder");
    }
}

FileWatcher::~FileWatcher() = default;

std::vector<fs::path> FileWatcher::Wait(std::chrono::milliseconds timeout,
                                        const std::atomic<bool>& stop,
                                        std::chrono::milliseconds settle) {
    std::vector<fs::path> changed;
    Folder* ready = platform_->Ready(timeout, stop);
    for (int round = 0; ready != nullptr && round < kMaxSettleRounds; ++round) {
        Platform::Collect(*ready, changed);
        ready = platform_->Ready(settle, stop);
    }
    return changed;
}

}  // namespace arbolet::disk
