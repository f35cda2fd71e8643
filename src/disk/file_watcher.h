// Waiting for changes to the files in a few folders: inotify on Linux, ReadDirectoryChangesW on
// Windows. Used to follow a project on disk while the developer edits it.
#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <vector>

namespace arbolet::disk {

class FileWatcher {
  public:
    // Watches the files directly inside each folder (not below). Raises FileError for a folder
    // that cannot be watched.
    explicit FileWatcher(const std::vector<std::filesystem::path>& folders);
    ~FileWatcher();
    FileWatcher(const FileWatcher&) = delete;
    FileWatcher& operator=(const FileWatcher&) = delete;

    // Waits until files change, `timeout` passes or `stop` becomes true; returns the files
    // written, created, deleted or renamed (either name), each once. After the first change
    // it waits `settle` more for the rest of the same save (editors write in several steps).
    std::vector<std::filesystem::path> Wait(
        std::chrono::milliseconds timeout, const std::atomic<bool>& stop,
        std::chrono::milliseconds settle = std::chrono::milliseconds(50));

  private:
    struct Platform;
    std::unique_ptr<Platform> platform_;
};

}  // namespace arbolet::disk
