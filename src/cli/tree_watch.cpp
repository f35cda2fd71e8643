// Following the files of a loaded tree (see tree_watch.h).
#include "cli/tree_watch.h"

#include <algorithm>

#include "cli/cli_context.h"
#include "disk/vb_path.h"

namespace arbolet::cli {

// Counts the environment's events, and hands the tree the component events of the projects
// other than the active one, for which the explorer takes no source of its own.
class TreeWatch::Counter final : public env::VBProjectsEventsSink,
                                 public env::VBComponentsEventsSink {
  public:
    Counter(LoadedTree& loaded) : loaded_(loaded) {}

    void ItemAdded(const env::VBProjectRef&) override { ++events; }
    void ItemRemoved(const env::VBProjectRef&) override { ++events; }
    void ItemRenamed(const env::VBProjectRef&, std::string_view) override { ++events; }

    void ItemAdded(const env::VBComponentRef& component) override {
        if (Count(*component)) loaded_.explorer.ComponentAdded(*component);
    }
    void ItemRemoved(const env::VBComponentRef& component) override {
        if (Count(*component)) loaded_.explorer.ComponentRemoved(*component);
    }
    void ItemRenamed(const env::VBComponentRef& component, std::string_view oldName) override {
        if (Count(*component)) loaded_.explorer.ComponentRenamed(*component, oldName);
    }
    void ItemReloaded(const env::VBComponentRef& component) override {
        if (Count(*component)) loaded_.explorer.ComponentReloaded(*component);
    }

    int events = 0;

  private:
    // Counts the event; true when the explorer does not hear of it itself.
    bool Count(const env::VBComponent& component) {
        ++events;
        try {
            return env::ProjectOf(component) != loaded_.environment->ActiveVBProject();
        } catch (const std::exception&) {
            return false;
        }
    }

    LoadedTree& loaded_;
};

TreeWatch::TreeWatch(LoadedTree& loaded, CliContext& context)
    : loaded_(loaded), context_(context), counter_(std::make_shared<Counter>(loaded)) {
    const auto events = loaded_.environment->Events();
    projectCookie_ = events->VBProjectsEvents()->Advise(counter_);
    componentCookie_ = events->VBComponentsEvents(nullptr)->Advise(counter_);
    warningsShown_ = loaded_.environment->Warnings().size();
    folders_ = loaded_.environment->Folders();
    watcher_ = std::make_unique<disk::FileWatcher>(folders_);
}

TreeWatch::~TreeWatch() {
    const auto events = loaded_.environment->Events();
    events->VBProjectsEvents()->Unadvise(projectCookie_);
    events->VBComponentsEvents(nullptr)->Unadvise(componentCookie_);
}

bool TreeWatch::Step(std::chrono::milliseconds timeout, const std::atomic<bool>& stop) {
    const auto changed = watcher_->Wait(timeout, stop);
    if (changed.empty()) return false;
    const int before = counter_->events;
    // A project file may have changed only its folder list, and a reloaded component its own
    // folder; neither moves a node by itself, so such changes rebuild the tree.
    const bool projectFileChanged =
        std::any_of(changed.begin(), changed.end(), [](const std::filesystem::path& file) {
            return disk::HasExtension(file, ".vbp") || disk::HasExtension(file, ".vbg");
        });
    loaded_.environment->Refresh(changed);
    const auto& warnings = loaded_.environment->Warnings();
    for (; warningsShown_ < warnings.size(); ++warningsShown_) {
        PrintWarning(context_, warnings[warningsShown_]);
    }
    // Components may now live in folders not watched before.
    if (auto folders = loaded_.environment->Folders(); folders != folders_) {
        watcher_ = std::make_unique<disk::FileWatcher>(folders);
        folders_ = std::move(folders);
    }
    const bool changedTree = counter_->events != before || projectFileChanged;
    if (changedTree) loaded_.explorer.RefreshProjects();
    return changedTree;
}

}  // namespace arbolet::cli
