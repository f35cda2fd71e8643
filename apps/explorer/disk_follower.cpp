// The watching thread behind DiskFollower.
#include "disk_follower.h"

#include <algorithm>
#include <exception>

#include "disk/file_watcher.h"

namespace arbolet::explorer_app {

// The watch starts here, before the constructor returns, so that no change made right after
// opening is missed; only the waiting moves to the thread.
DiskFollower::DiskFollower(HWND window, UINT message, std::vector<std::filesystem::path> folders)
    : window_(window), message_(message) {
    std::unique_ptr<disk::FileWatcher> watcher;
    try {
        watcher = std::make_unique<disk::FileWatcher>(folders);
    } catch (const std::exception&) {
        // A folder that cannot be watched: the tree simply does not follow it.
        return;
    }
    thread_ = std::thread([this, watcher = std::move(watcher)] { Run(*watcher); });
}

DiskFollower::~DiskFollower() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
}

void DiskFollower::Run(disk::FileWatcher& watcher) {
    try {
        while (!stop_) {
            std::vector<std::filesystem::path> changed =
                watcher.Wait(std::chrono::milliseconds(250), stop_);
            if (changed.empty()) continue;
            {
                const std::lock_guard lock(mutex_);
                for (auto& file : changed) {
                    if (std::find(changes_.begin(), changes_.end(), file) == changes_.end())
                        changes_.push_back(std::move(file));
                }
            }
            PostMessageW(window_, message_, 0, 0);
        }
    } catch (const std::exception&) {
        // The watch broke down (a folder went away): the tree stops following the files.
    }
}

std::vector<std::filesystem::path> DiskFollower::TakeChanges() {
    const std::lock_guard lock(mutex_);
    std::vector<std::filesystem::path> changes;
    changes.swap(changes_);
    return changes;
}

}  // namespace arbolet::explorer_app
