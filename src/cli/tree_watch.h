// Following a loaded tree's files on disk: each change is read back into the projects, whose
// events bring the tree up to date.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>

#include "cli/project_loading.h"
#include "disk/file_watcher.h"

namespace arbolet::cli {

class TreeWatch {
  public:
    // Starts watching the folders of the loaded projects. Raises disk::FileError when a folder
    // cannot be watched.
    TreeWatch(LoadedTree& loaded, CliContext& context);
    ~TreeWatch();
    TreeWatch(const TreeWatch&) = delete;
    TreeWatch& operator=(const TreeWatch&) = delete;

    // Waits up to `timeout` for changes and takes them in; true when the projects changed.
    bool Step(std::chrono::milliseconds timeout, const std::atomic<bool>& stop);

  private:
    class Counter;

    LoadedTree& loaded_;
    CliContext& context_;
    std::unique_ptr<disk::FileWatcher> watcher_;
    std::vector<std::filesystem::path> folders_;
    std::shared_ptr<Counter> counter_;
    std::uint32_t projectCookie_ = 0;
    std::uint32_t componentCookie_ = 0;
    std::size_t warningsShown_ = 0;
};

}  // namespace arbolet::cli
