// The environment over VB6 files on disk: .vbp projects and .vbg groups opened as the IDE would
// open them, with their components, code and extended properties. Changes stay in memory until
// Save, which rewrites the changed files atomically and changes only the lines it must.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "disk/codepage.h"
#include "environment/vbide.h"

namespace arbolet::env {
class EventHub;
}

namespace arbolet::disk {

// Something wrong with a file that did not keep the projects from loading.
struct LoadWarning {
    std::string file;       // the file as the user named it, or as the project or group names it
    std::int32_t line = 0;  // 1-based; 0 when it concerns the whole file
    std::string message;

    // "file:line: message", or "file: message" without line.
    std::string ToString() const;
};

class DiskProject;
class DiskProjects;
class DiskComponent;

// The project's start-up object as its file names it now ("Form1", "Sub Main", "(None)"), without
// quotes; empty when it names none or is no project on disk.
std::string StartupObject(const env::VBProject& project);

class DiskEnvironment final : public env::VBE,
                              public std::enable_shared_from_this<DiskEnvironment> {
  public:
    // Opens .vbp and .vbg files, in the order given; a group's projects come in the order it
    // lists them. The group's start-up project, else the first project, is the start-up
    // project. Raises FileError for a file that cannot be read or that is no project or group.
    static std::shared_ptr<DiskEnvironment> Open(const std::vector<std::filesystem::path>& files,
                                                 int codePage = kDefaultCodePage);

    std::shared_ptr<env::VBProjects> VBProjects() const override;
    env::VBProjectRef ActiveVBProject() const override { return active_.lock(); }
    void SetActiveVBProject(const env::VBProjectRef& project) override { active_ = project; }
    std::shared_ptr<env::Events> Events() const override;
    // "Menu Bar" (File, View, Project), "Add-Ins" and "Standard", with the IDE's rules.
    std::shared_ptr<env::CommandBars> CommandBars() const override;
    env::VBComponentRef SelectedVBComponent() const override { return selected_.lock(); }
    void SetSelectedVBComponent(const env::VBComponentRef& component) override {
        selected_ = component;
    }
    // The name that the next component added through the Project menu takes instead of the
    // IDE's default (the command line names it); used once.
    void SetNextComponentName(std::string name) { nextComponentName_ = std::move(name); }
    std::optional<std::string> TakeNextComponentName();

    // Opens one more project file (VBProjects.AddFromFile) and raises ItemAdded.
    env::VBProjectRef AddFromFile(const std::filesystem::path& projectFile);
    // Closes a project (VBProjects.Remove), leaving its files as they are on disk, and raises
    // ItemRemoved; raises kSubscriptOutOfRange for a project that is not open.
    void RemoveProject(const env::VBProjectRef& project);

    // Takes in what changed on disk: a changed component file is reloaded (ItemReloaded, or
    // ItemRenamed first when its name changed), a vanished one removed (ItemRemoved); a changed
    // project file adds and removes components (ItemAdded, ItemRemoved) and renames the project
    // (ItemRenamed); a vanished project file closes the project (ItemRemoved). Files with
    // changes not yet saved are left as they are, with a warning, so that nothing is lost.
    void Refresh(const std::vector<std::filesystem::path>& changedFiles);
    // The folders holding the open projects and their component files.
    std::vector<std::filesystem::path> Folders() const;

    const std::vector<LoadWarning>& Warnings() const { return warnings_; }
    // The files whose bytes differ from what was read.
    std::vector<std::filesystem::path> ChangedFiles() const;
    // Writes every changed file. Before writing anything it checks that each still exists, is
    // writable and holds what was read, and checks each again as it replaces it; a failure
    // raises FileError and leaves every file as it was (files already rewritten get their old
    // bytes back). `beforeWrite`, when given, learns of each file just before it is written.
    void Save(const std::function<void(const std::filesystem::path&)>& beforeWrite = {});

  private:
    // Canonical paths of the files that changed.
    using ChangedSet = std::set<std::filesystem::path>;

    explicit DiskEnvironment(int codePage);

    void OpenGroup(const std::filesystem::path& groupFile);
    std::shared_ptr<DiskProject> LoadProject(const std::filesystem::path& projectFile,
                                             const std::string& shownAs);
    bool IsOpen(const std::filesystem::path& projectFile) const;
    bool HasProjectNamed(const std::string& name) const;
    void RefreshProject(const std::shared_ptr<DiskProject>& project, const ChangedSet& changed);
    // Whether the project's text was replaced by what is on disk now.
    bool ReloadProjectFile(const std::shared_ptr<DiskProject>& project);
    void SyncComponents(DiskProject& project, const ChangedSet& changed, bool projectReloaded);
    void ReloadComponent(DiskProject& project, const std::shared_ptr<DiskComponent>& component);
    void CloseProject(const std::shared_ptr<DiskProject>& project);
    void ReloadGroup(std::size_t group);

    // A group file opened, with the canonical paths of the project files it listed.
    struct OpenedGroup {
        std::filesystem::path path;
        std::string bytes;
        std::vector<std::filesystem::path> members;
    };

    int codePage_;
    std::shared_ptr<DiskProjects> projects_;
    std::shared_ptr<env::EventHub> events_;
    std::weak_ptr<env::VBProject> active_;
    std::weak_ptr<env::VBComponent> selected_;
    mutable std::shared_ptr<env::CommandBars> commandBars_;
    std::optional<std::string> nextComponentName_;
    std::vector<LoadWarning> warnings_;
    std::vector<OpenedGroup> groups_;
};

}  // namespace arbolet::disk
