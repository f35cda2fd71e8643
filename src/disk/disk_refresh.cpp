// Following changes made on disk by other programs: reloading, adding, removing and renaming
// what changed (see disk_environment.h).
#include <algorithm>
#include <map>
#include <set>
#include <system_error>
#include <utility>

#include "disk/disk_loading.h"
#include "disk/file_io.h"
#include "disk/group_file.h"
#include "disk/vb_path.h"
#include "environment/event_hub.h"

namespace arbolet::disk {
namespace fs = std::filesystem;

std::vector<fs::path> DiskEnvironment::Folders() const {
    std::vector<fs::path> folders;
    std::set<fs::path> seen;
    const auto add = [&](const fs::path& file) {
        fs::path folder = Canonical(file).parent_path();
        if (seen.insert(folder).second) folders.push_back(std::move(folder));
    };
    for (const auto& group : groups_)
        add(group.path);
    for (const auto& project : projects_->items) {
        add(project->Path());
        for (const auto& component : project->components->items)
            add(component->Path());
    }
    return folders;
}

void DiskEnvironment::Refresh(const std::vector<fs::path>& changedFiles) {
    ChangedSet changed;
    for (const auto& file : changedFiles)
        changed.insert(PathIdentity(file));
    for (std::size_t group = 0; group < groups_.size(); ++group) {
        if (changed.contains(PathIdentity(groups_[group].path))) ReloadGroup(group);
    }
    const auto projects = projects_->items;  // closing a project changes the list
    for (const auto& project : projects)
        RefreshProject(project, changed);
}

// Projects the group lists anew are opened, and those it no longer lists are closed.
void DiskEnvironment::ReloadGroup(std::size_t index) {
    OpenedGroup& group = groups_[index];
    const std::string shown = PathToUtf8(group.path.generic_u8string());
    std::string bytes;
    try {
        bytes = ReadFileBytes(group.path);
    } catch (const FileError& error) {
        warnings_.push_back({shown, 0, error.what()});
        return;
    }
    if (bytes == group.bytes) return;
    const GroupFile parsed = ParseGroupFile(bytes, codePage_);
    if (!parsed.IsGroup()) {
        warnings_.push_back({shown, 0, "no longer a project group; not reloaded"});
        return;
    }
    group.bytes = std::move(bytes);
    std::vector<fs::path> members;
    for (const GroupMember& member : parsed.projects) {
        const auto resolved = ResolveVbPath(group.path.parent_path(), member.path);
        if (!resolved) continue;
        members.push_back(PathIdentity(*resolved));
        if (IsOpen(*resolved)) continue;
        try {
            LoadProject(*resolved, ShownBeside(shown, member.path));
        } catch (const FileError& error) {
            warnings_.push_back({shown, static_cast<std::int32_t>(member.line + 1), error.what()});
        }
    }
    const auto listed = [&](const fs::path& path) {
        return std::find(members.begin(), members.end(), path) != members.end();
    };
    for (const auto& project : std::vector(projects_->items)) {
        const fs::path path = PathIdentity(project->Path());
        if (listed(path)) continue;
        const auto& before = groups_[index].members;
        if (std::find(before.begin(), before.end(), path) != before.end()) CloseProject(project);
    }
    groups_[index].members = std::move(members);
}

void DiskEnvironment::RefreshProject(const std::shared_ptr<DiskProject>& project,
                                     const ChangedSet& changed) {
    bool reloaded = false;
    if (changed.contains(PathIdentity(project->Path()))) {
        std::error_code ec;
        if (!fs::exists(project->Path(), ec)) {
            CloseProject(project);
            return;
        }
        reloaded = ReloadProjectFile(project);
    }
    SyncComponents(*project, changed, reloaded);
}

void DiskEnvironment::CloseProject(const std::shared_ptr<DiskProject>& project) {
    if (project->Changed()) {
        warnings_.push_back({project->ShownAs(), 0, "the project file has gone; it stays open"});
        return;
    }
    auto& items = projects_->items;
    items.erase(std::remove(items.begin(), items.end(), project), items.end());
    const env::VBProjectRef removed = project;
    events_->RaiseProjectEvent([&](env::VBProjectsEventsSink& sink) { sink.ItemRemoved(removed); });
    events_->ForgetProject(project.get());
}

bool DiskEnvironment::ReloadProjectFile(const std::shared_ptr<DiskProject>& project) {
    std::string bytes;
    try {
        bytes = ReadFileBytes(project->Path());
    } catch (const FileError& error) {
        warnings_.push_back({project->ShownAs(), 0, error.what()});
        return false;
    }
    if (bytes == project->Original()) return false;
    if (project->Changed()) {
        warnings_.push_back({project->ShownAs(), 0,
                             "changed on disk while it has changes not saved; not reloaded"});
        return false;
    }
    ProjectFile text(std::move(bytes), codePage_);
    if (text.IsBinary()) {
        warnings_.push_back({project->ShownAs(), 0, "no longer a project file; not reloaded"});
        return false;
    }
    std::vector<LoadWarning> ignored;
    const std::string newName = ProjectNameOf(text, project->Path(), project->ShownAs(), ignored);
    project->Reload(std::move(text));
    if (newName == project->name) return true;
    const std::string oldName = std::exchange(project->name, newName);
    const env::VBProjectRef renamed = project;
    events_->RaiseProjectEvent(
        [&](env::VBProjectsEventsSink& sink) { sink.ItemRenamed(renamed, oldName); });
    return true;
}

// The project file's entries decide which components the project has; a component whose file
// changed is read again. Each path is resolved and made canonical once, so a refresh costs a
// number of file-system calls in proportion to the project's size. A missing file is reported
// as loading reports it, once: when the project file was read again, or when it takes a
// component away.
void DiskEnvironment::SyncComponents(DiskProject& project, const ChangedSet& changed,
                                     bool projectReloaded) {
    auto& items = project.components->items;
    std::map<fs::path, std::shared_ptr<DiskComponent>> byPath;
    for (const auto& component : items)
        byPath.try_emplace(PathIdentity(component->Path()), component);
    std::vector<std::shared_ptr<DiskComponent>> kept;
    std::vector<std::shared_ptr<DiskComponent>> added;
    std::vector<LoadWarning> loadWarnings;
    ComponentLoader loader(project, codePage_, loadWarnings);
    std::set<fs::path> listed;
    std::vector<ComponentEntry> missing;
    for (const ComponentEntry& entry : ComponentEntries(project.Text())) {
        const auto resolved = loader.Resolve(entry);
        if (!resolved) {
            missing.push_back(entry);
            continue;
        }
        const fs::path canonical = PathIdentity(*resolved);
        if (!listed.insert(canonical).second) continue;  // a file listed twice is one component
        const auto existing = byPath.find(canonical);
        if (existing != byPath.end()) {
            kept.push_back(existing->second);
        } else if (auto component = loader.Load(entry)) {
            component->collection = project.components;
            kept.push_back(component);
            added.push_back(component);
        }
    }
    const std::set<std::shared_ptr<DiskComponent>> keptSet(kept.begin(), kept.end());
    std::vector<std::shared_ptr<DiskComponent>> removed;
    for (const auto& component : items) {
        if (!keptSet.contains(component)) removed.push_back(component);
    }
    items = kept;
    for (const ComponentEntry& entry : missing) {
        const bool tookComponent =
            std::any_of(removed.begin(), removed.end(), [&](const auto& component) {
                return component->entryKind == entry.kind && component->entryPath == entry.path;
            });
        if (projectReloaded || tookComponent) {
            warnings_.push_back({project.ShownAs(), static_cast<std::int32_t>(entry.line + 1),
                                 "component file not found: " + entry.path});
        }
    }
    warnings_.insert(warnings_.end(), loadWarnings.begin(), loadWarnings.end());
    for (const auto& component : removed) {
        const env::VBComponentRef gone = component;
        project.RaiseComponentEvent([&](env::VBComponentsEventsSink& s) { s.ItemRemoved(gone); });
    }
    for (const auto& component : added) {
        const env::VBComponentRef fresh = component;
        project.RaiseComponentEvent([&](env::VBComponentsEventsSink& s) { s.ItemAdded(fresh); });
    }
    if (changed.empty()) return;
    for (const auto& component : std::vector(items)) {
        if (changed.contains(PathIdentity(component->Path()))) ReloadComponent(project, component);
    }
}

void DiskEnvironment::ReloadComponent(DiskProject& project,
                                      const std::shared_ptr<DiskComponent>& component) {
    const std::string shown = PathToUtf8(component->Path().generic_u8string());
    std::error_code ec;
    if (!fs::exists(component->Path(), ec)) {
        if (component->Changed()) {
            warnings_.push_back({shown, 0, "the file has gone; its changes stay unsaved"});
            return;
        }
        auto& items = project.components->items;
        items.erase(std::remove(items.begin(), items.end(), component), items.end());
        const env::VBComponentRef gone = component;
        project.RaiseComponentEvent([&](env::VBComponentsEventsSink& s) { s.ItemRemoved(gone); });
        return;
    }
    if (!component->HasText()) return;
    std::string bytes;
    try {
        bytes = ReadFileBytes(component->Path());
    } catch (const FileError& error) {
        warnings_.push_back({shown, 0, error.what()});
        return;
    }
    if (bytes == component->Original()) return;
    if (component->Changed()) {
        warnings_.push_back({shown, 0,
                             "changed on disk while it has changes not saved; not "
                             "reloaded"});
        return;
    }
    ComponentText text(std::move(bytes), codePage_);
    const std::string newName = text.File().name.empty() ? component->Name() : text.File().name;
    const env::ComponentType type = TypeOf(component->entryKind, &text.File());
    const std::string oldName = component->Name();
    component->Reload(newName, type, std::move(text));
    const env::VBComponentRef reloaded = component;
    if (newName != oldName) {
        project.RaiseComponentEvent(
            [&](env::VBComponentsEventsSink& s) { s.ItemRenamed(reloaded, oldName); });
    }
    project.RaiseComponentEvent([&](env::VBComponentsEventsSink& s) { s.ItemReloaded(reloaded); });
}

}  // namespace arbolet::disk
