// Follows the open projects' files on disk without holding up the window: a thread waits on
// the file watcher and posts a message to the window when files changed; the window's thread
// then takes the list and refreshes the projects, so the environment is touched by one thread.
#pragma once

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <mutex>
#include <thread>
#include <vector>

namespace arbolet::disk {
class FileWatcher;
}

namespace arbolet::explorer_app {

class DiskFollower {
  public:
    // Watches the folders; posts `message` to `window` after each batch of changes.
    DiskFollower(HWND window, UINT message, std::vector<std::filesystem::path> folders);
    ~DiskFollower();
    DiskFollower(const DiskFollower&) = delete;
    DiskFollower& operator=(const DiskFollower&) = delete;

    // The files changed since the last call, each once.
    std::vector<std::filesystem::path> TakeChanges();

  private:
    void Run(disk::FileWatcher& watcher);

    HWND window_;
    UINT message_;
    std::atomic<bool> stop_{false};
    std::mutex mutex_;
    std::vector<std::filesystem::path> changes_;
    std::thread thread_;
};

}  // namespace arbolet::explorer_app
