// Opening projects and groups from disk (see disk_environment.h and disk_loading.h).
#include "disk/disk_loading.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "base/utf8.h"
#include "disk/file_io.h"
#include "disk/group_file.h"
#include "disk/vb_path.h"
#include "environment/event_hub.h"

namespace arbolet::disk {
namespace fs = std::filesystem;

namespace {

// The name in the file wins; a module or class without one keeps the project's name for it.
std::string ComponentNameOf(const ComponentEntry& entry, const ComponentFile& file,
                            const fs::path& path) {
    if (!file.name.empty()) return file.name;
    if (!entry.name.empty()) return entry.name;
    return PathToUtf8(path.stem());
}

}  // namespace

std::string LoadWarning::ToString() const {
    return line > 0 ? file + ":" + std::to_string(line) + ": " + message : file + ": " + message;
}

std::optional<fs::path> ComponentLoader::Resolve(const ComponentEntry& entry) {
    return resolver_.Resolve(project_.Path().parent_path(), entry.path);
}

std::shared_ptr<DiskComponent> ComponentLoader::Load(const ComponentEntry& entry) {
    const auto line = static_cast<std::int32_t>(entry.line + 1);
    const auto resolved = Resolve(entry);
    if (!resolved) {
        warnings_.push_back({project_.ShownAs(), line, "component file not found: " + entry.path});
        return nullptr;
    }
    if (!HasCode(entry.kind)) {
        auto component = std::make_shared<DiskComponent>("", TypeOf(entry.kind, nullptr), *resolved,
                                                         std::nullopt);
        component->entryKind = entry.kind;
        component->entryPath = entry.path;
        return component;
    }
    std::string bytes;
    try {
        bytes = ReadFileBytes(*resolved);
    } catch (const FileError& error) {
        warnings_.push_back({project_.ShownAs(), line,
                             "component file cannot be read: " + std::string(error.what())});
        return nullptr;
    }
    ComponentText text(std::move(bytes), codePage_);
    ReportDamage(entry, text.File());
    const env::ComponentType type = TypeOf(entry.kind, &text.File());
    auto component = std::make_shared<DiskComponent>(ComponentNameOf(entry, text.File(), *resolved),
                                                     type, *resolved, std::move(text));
    component->entryKind = entry.kind;
    component->entryPath = entry.path;
    return component;
}

void ComponentLoader::ReportDamage(const ComponentEntry& entry, const ComponentFile& file) const {
    for (const auto& diagnostic : file.diagnostics) {
        if (diagnostic.severity != FileDiagnostic::Severity::Error) continue;
        warnings_.push_back(
            {ShownBeside(project_.ShownAs(), entry.path), diagnostic.line, diagnostic.message});
    }
}

std::string ProjectNameOf(const ProjectFile& text, const fs::path& path, const std::string& shown,
                          std::vector<LoadWarning>& warnings) {
    std::string name = Unquoted(text::Trim(text.TopLevelValue("Name").value_or("")));
    if (name.empty()) {
        name = PathToUtf8(path.stem());
        warnings.push_back({shown, 0, "no Name line; the project is named " + name});
    }
    return name;
}

DiskEnvironment::DiskEnvironment(int codePage)
    : codePage_(codePage),
      projects_(std::make_shared<DiskProjects>()),
      events_(std::make_shared<env::EventHub>()) {}

std::shared_ptr<DiskEnvironment> DiskEnvironment::Open(const std::vector<fs::path>& files,
                                                       int codePage) {
    auto environment = std::shared_ptr<DiskEnvironment>(new DiskEnvironment(codePage));
    for (const fs::path& file : files) {
        if (HasExtension(file, ".vbg")) {
            environment->OpenGroup(file);
        } else if (HasExtension(file, ".vbp")) {
            environment->AddFromFile(file);
        } else {
            throw FileError(file, "is neither a .vbp project nor a .vbg project group");
        }
    }
    auto& projects = *environment->projects_;
    if (projects.start.expired() && !projects.items.empty()) projects.start = projects.items[0];
    environment->active_ = projects.start;
    return environment;
}

std::shared_ptr<env::VBProjects> DiskEnvironment::VBProjects() const {
    return projects_;
}

std::shared_ptr<env::Events> DiskEnvironment::Events() const {
    return events_;
}

bool DiskEnvironment::IsOpen(const fs::path& projectFile) const {
    const fs::path canonical = PathIdentity(projectFile);
    return std::any_of(projects_->items.begin(), projects_->items.end(),
                       [&](const auto& p) { return PathIdentity(p->Path()) == canonical; });
}

bool DiskEnvironment::HasProjectNamed(const std::string& name) const {
    const std::string lower = text::ToLower(name);
    return std::any_of(projects_->items.begin(), projects_->items.end(),
                       [&](const auto& p) { return text::ToLower(p->name) == lower; });
}

env::VBProjectRef DiskEnvironment::AddFromFile(const fs::path& projectFile) {
    return LoadProject(projectFile, PathToUtf8(projectFile.generic_u8string()));
}

std::shared_ptr<DiskProject> DiskEnvironment::LoadProject(const fs::path& projectFile,
                                                          const std::string& shownAs) {
    if (IsOpen(projectFile)) {
        warnings_.push_back({shownAs, 0, "the project is already open"});
        return nullptr;
    }
    ProjectFile text(ReadFileBytes(projectFile), codePage_);
    if (text.IsBinary()) {
        const auto& diagnostic = text.Diagnostics().front();
        throw FileError(projectFile,
                        "line " + std::to_string(diagnostic.line) + ": " + diagnostic.message);
    }
    for (const auto& diagnostic : text.Diagnostics()) {
        warnings_.push_back({shownAs, diagnostic.line, diagnostic.message});
    }
    auto project =
        std::make_shared<DiskProject>(AbsolutePath(projectFile), shownAs, std::move(text));
    project->name = ProjectNameOf(project->Text(), projectFile, shownAs, warnings_);
    if (HasProjectNamed(project->name)) {
        warnings_.push_back({shownAs, 0,
                             "another open project is also named " + project->name +
                                 "; their nodes in the tree are shared"});
    }
    project->components = std::make_shared<DiskComponents>(project);
    project->collection = projects_;
    project->events = events_;
    project->codePage = codePage_;
    ComponentLoader loader(*project, codePage_, warnings_);
    std::set<fs::path> loaded;
    for (const ComponentEntry& entry : ComponentEntries(project->Text())) {
        auto component = loader.Load(entry);
        if (!component) continue;
        // One file is one component: a second entry for it would make two that overwrite
        // each other's changes.
        if (!loaded.insert(PathIdentity(component->Path())).second) {
            warnings_.push_back(
                {shownAs, static_cast<std::int32_t>(entry.line + 1),
                 "the component file is listed twice; this entry is skipped: " + entry.path});
            continue;
        }
        component->collection = project->components;
        project->components->items.push_back(std::move(component));
    }
    projects_->items.push_back(project);
    env::VBProjectRef added = project;
    events_->RaiseProjectEvent([&](env::VBProjectsEventsSink& sink) { sink.ItemAdded(added); });
    return project;
}

void DiskEnvironment::OpenGroup(const fs::path& groupFile) {
    std::string bytes = ReadFileBytes(groupFile);
    const GroupFile group = ParseGroupFile(bytes, codePage_);
    if (!group.IsGroup()) {
        const auto& diagnostic = group.diagnostics.front();
        throw FileError(groupFile, diagnostic.line > 0 ? "line " + std::to_string(diagnostic.line) +
                                                             ": " + diagnostic.message
                                                       : diagnostic.message);
    }
    if (!projects_->group) {
        projects_->group = std::make_shared<DiskGroup>(groupFile, std::move(bytes), codePage_);
    }
    const std::string groupShown = PathToUtf8(groupFile.generic_u8string());
    OpenedGroup opened{AbsolutePath(groupFile), std::move(bytes), {}};
    for (const GroupMember& member : group.projects) {
        const auto line = static_cast<std::int32_t>(member.line + 1);
        const auto resolved = ResolveVbPath(AbsolutePath(groupFile).parent_path(), member.path);
        if (!resolved) {
            warnings_.push_back({groupShown, line, "project file not found: " + member.path});
            continue;
        }
        opened.members.push_back(PathIdentity(*resolved));
        try {
            auto project = LoadProject(*resolved, ShownBeside(groupShown, member.path));
            if (project && member.startup && projects_->start.expired()) {
                projects_->start = project;
            }
        } catch (const FileError& error) {
            warnings_.push_back({groupShown, line, error.what()});
        }
    }
    groups_.push_back(std::move(opened));
}

}  // namespace arbolet::disk
