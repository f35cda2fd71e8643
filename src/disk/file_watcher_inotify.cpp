// The file watcher over inotify (see file_watcher.h).
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>

#include "disk/file_io.h"
#include "disk/file_watcher.h"

namespace arbolet::disk {
namespace fs = std::filesystem;

namespace {

// Saves arrive as a write, or as a rename over the file (atomic saves, most editors).
constexpr std::uint32_t kEvents =
    IN_CLOSE_WRITE | IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
// Short waits, so that a stop request is seen soon even when a signal arrived just before poll.
constexpr int kPollSliceMs = 100;
constexpr int kMaxSettleRounds = 40;

}  // namespace

struct FileWatcher::Platform {
    int fd = -1;
    std::map<int, fs::path> folders;  // by watch descriptor

    // Reads what is queued into `changed`; false when nothing was.
    bool Drain(std::vector<fs::path>& changed) {
        alignas(inotify_event) char buffer[16384];
        bool any = false;
        while (true) {
            const ssize_t length = read(fd, buffer, sizeof buffer);
            if (length <= 0) return any;
            for (ssize_t at = 0; at < length;) {
                inotify_event event;
                std::memcpy(&event, buffer + at, sizeof event);
                const char* name = buffer + at + sizeof(inotify_event);
                at += static_cast<ssize_t>(sizeof(inotify_event) + event.len);
                const auto folder = folders.find(event.wd);
                if (folder == folders.end() || event.len == 0) continue;
                const fs::path file = folder->second / name;
                if (std::find(changed.begin(), changed.end(), file) == changed.end()) {
                    changed.push_back(file);
                }
                any = true;
            }
        }
    }

    // Waits up to `ms` for something to read; false on timeout or stop.
    bool Ready(std::chrono::milliseconds ms, const std::atomic<bool>& stop) {
        const auto end = std::chrono::steady_clock::now() + ms;
        while (!stop) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                end - std::chrono::steady_clock::now());
            if (left.count() < 0) return false;
            pollfd pfd{fd, POLLIN, 0};
            const int slice = static_cast<int>(std::min<long long>(left.count(), kPollSliceMs));
            if (poll(&pfd, 1, slice) > 0) return true;
        }
        return false;
    }
};

FileWatcher::FileWatcher(const std::vector<fs::path>& folders)
    : platform_(std::make_unique<Platform>()) {
    platform_->fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (platform_->fd < 0) {
        throw FileError(folders.empty() ? fs::path() : folders.front(),
                        std::string("cannot watch files: ") + std::strerror(errno));
    }
    for (const fs::path& folder : folders) {
        const int wd = inotify_add_watch(platform_->fd, folder.c_str(), kEvents);
        if (wd < 0) {
            const int error = errno;
            close(platform_->fd);
            throw FileError(folder,
                            std::string("cannot watch the folder: ") + std::strerror(error));
        }
        platform_->folders[wd] = folder;
    }
}

FileWatcher::~FileWatcher() {
    if (platform_ && platform_->fd >= 0) close(platform_->fd);
}

std::vector<fs::path> FileWatcher::Wait(std::chrono::milliseconds timeout,
                                        const std::atomic<bool>& stop,
                                        std::chrono::milliseconds settle) {
    std::vector<fs::path> changed;
    if (!platform_->Ready(timeout, stop)) return changed;
    platform_->Drain(changed);
    // A folder written to without pause still ends the wait after a bounded time.
    for (int round = 0; round < kMaxSettleRounds && platform_->Ready(settle, stop); ++round)
        platform_->Drain(changed);
    return changed;
}

}  // namespace arbolet::disk
