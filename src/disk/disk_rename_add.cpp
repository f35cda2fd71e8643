// Renaming projects and components and adding component files, with the refusals the IDE
// makes (see disk_environment.h).
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "disk/disk_loading.h"
#include "disk/disk_objects.h"
#include "disk/file_io.h"
#include "disk/vb_path.h"

namespace arbolet::disk {
namespace fs = std::filesystem;

namespace {

bool NamesComponentOf(const DiskComponents& components, std::string_view name,
                      const DiskComponent* except) {
    const std::string lower = text::ToLower(name);
    return std::any_of(components.items.begin(), components.items.end(), [&](const auto& c) {
        return c.get() != except && text::ToLower(c->Name()) == lower;
    });
}

}  // namespace

// The project file's entries that name the component: its own `Module=`/`Class=` line, and the
// start-up object and the icon form, which would otherwise name a component that is gone.
void DiskComponent::RenameInProjectFile(ProjectFile& projectText, std::string_view oldName,
                                        std::string_view newName) const {
    const std::string oldLower = text::ToLower(oldName);
    std::vector<std::pair<std::size_t, std::string>> edits;  // a value edit parses the file anew
    for (const ProjectEntry& entry : projectText.TopLevel()) {
        const std::string key = text::ToLower(entry.key);
        if (key == "startup" || key == "iconform") {
            if (text::ToLower(Unquoted(text::Trim(entry.value))) == oldLower) {
                edits.emplace_back(entry.line, "\"" + std::string(newName) + "\"");
            }
            continue;
        }
        const auto semicolon = entry.value.find(';');
        if (IsNamedEntry(entryKind) && KindOfKey(entry.key) == entryKind &&
            semicolon != std::string::npos &&
            Unquoted(text::Trim(std::string_view(entry.value).substr(semicolon + 1))) ==
                entryPath) {
            edits.emplace_back(entry.line, std::string(newName) + entry.value.substr(semicolon));
        }
    }
    for (const auto& [line, value] : edits)
        projectText.SetTopLevelValue(line, value);
}

// A user control is hosted as `Begin Project.Control` in the designer blocks of the forms,
// controls, pages and documents of every open project; VB cannot load a host that names a
// control that is gone. Each host's new text, computed before any is taken.
std::vector<std::pair<std::shared_ptr<DiskComponent>, ComponentText>> DiskComponent::HostsRenamed(
    const DiskProject& project, std::string_view newName) const {
    std::vector<std::pair<std::shared_ptr<DiskComponent>, ComponentText>> hosts;
    if (type_ != env::ComponentType::UserControl) return hosts;
    std::vector<std::shared_ptr<DiskProject>> projects;
    if (const auto all = std::dynamic_pointer_cast<DiskProjects>(project.collection.lock())) {
        projects = all->items;
    } else {
        projects.push_back(std::const_pointer_cast<DiskProject>(project.shared_from_this()));
    }
    for (const auto& each : projects) {
        for (const auto& component : each->components->items) {
            if (component.get() == this || !component->text_) continue;
            ComponentText host = *component->text_;
            try {
                if (!host.RenameHostedControl(project.name, name_, newName)) continue;
            } catch (const VbError& error) {
                throw VbError(error.Number, error.Source,
                              PathToUtf8(component->path_.filename()) + " hosts " + name_ +
                                  " but " + error.Description);
            }
            hosts.emplace_back(component, std::move(host));
        }
    }
    return hosts;
}

// The file keeps its name; `Attribute VB_Name` and, for modules and classes, the project file's
// entry take the new one, and so do the designer blocks that host a user control.
void DiskComponent::SetName(std::string_view newName) {
    constexpr const char* kSource = "VBComponent.Name";
    const auto components = std::static_pointer_cast<DiskComponents>(collection.lock());
    const auto project = OwningProject(*this);
    if (!text_ || !project) env::enverr::RaiseNotSupported(kSource);
    env::CheckComponentName(*components, newName, this);
    ComponentText renamed = *text_;
    renamed.Rename(newName);
    ProjectFile projectText = project->Text();
    RenameInProjectFile(projectText, name_, newName);
    auto hosts = HostsRenamed(*project, newName);
    // Every text changed or none: the edits above raise before anything is taken, and the save
    // writes all the changed files or none.
    text_ = std::move(renamed);
    project->EditText() = std::move(projectText);
    for (auto& [host, text] : hosts)
        host->text_ = std::move(text);
    const std::string oldName = std::exchange(name_, std::string(newName));
    const env::VBComponentRef self = shared_from_this();
    project->RaiseComponentEvent(
        [&](env::VBComponentsEventsSink& sink) { sink.ItemRenamed(self, oldName); });
}

void DiskProject::SetName(std::string_view newName) {
    const auto projects = collection.lock();
    if (!projects) env::enverr::RaiseObjectNotSet("VBProject.Name");
    env::CheckProjectName(*projects, newName, this);
    const std::string quoted = "\"" + std::string(newName) + "\"";
    std::optional<std::size_t> nameLine;
    for (const ProjectEntry& entry : text_.TopLevel()) {
        if (text::ToLower(entry.key) == "name") {
            nameLine = entry.line;
            break;
        }
    }
    if (nameLine) {
        text_.SetTopLevelValue(*nameLine, quoted);
    } else {
        text_.AddTopLevelEntry("Name", quoted);
    }
    const std::string oldName = std::exchange(name, std::string(newName));
    if (auto hub = events.lock()) {
        const env::VBProjectRef self = shared_from_this();
        hub->RaiseProjectEvent(
            [&](env::VBProjectsEventsSink& sink) { sink.ItemRenamed(self, oldName); });
    }
}

env::VBComponentRef DiskComponents::AddFile(std::string_view fileName) {
    constexpr const char* kSource = "VBComponents.AddFile";
    const auto project = std::static_pointer_cast<DiskProject>(Parent());
    if (!project) env::enverr::RaiseObjectNotSet(kSource);
    const fs::path folder = project->Path().parent_path();
    const fs::path given = PathFromUtf8(fileName);
    const auto resolved = ResolveVbPath(fs::current_path(), PathToUtf8(given.generic_u8string()));
    if (!resolved || !fs::is_regular_file(*resolved)) {
        throw VbError(53, kSource, "File not found: '" + std::string(fileName) + "'");
    }
    const auto kind = KindOfFile(*resolved);
    if (!kind) {
        throw VbError(env::enverr::kInvalidProcedureCall, kSource,
                      "'" + std::string(fileName) + "' is not a component file");
    }
    for (const auto& component : items) {
        if (SameFileOnWindows(component->Path(), *resolved)) {
            throw VbError(env::enverr::kFileAlreadyInProject, kSource,
                          "'" + std::string(fileName) + "' is already part of the project");
        }
    }
    std::vector<LoadWarning> warnings;
    ComponentLoader loader(*project, project->codePage, warnings);
    ComponentEntry entry{*kind, {}, VbPathFor(*resolved, folder), 0};
    auto component = loader.Load(entry);
    if (!component) throw VbError(75, kSource, "Path/File access error: '" + entry.path + "'");
    if (NamesComponentOf(*this, component->Name(), nullptr)) {
        throw VbError(env::enverr::kInvalidPropertyValue, kSource,
                      std::string(env::enverr::kNameConflicts) + ": " + component->Name());
    }
    project->EditText().AddTopLevelEntry(
        KeyOfKind(*kind), IsNamedEntry(*kind) ? component->Name() + "; " + entry.path : entry.path);
    component->collection = project->components;
    items.push_back(component);
    const env::VBComponentRef added = component;
    project->RaiseComponentEvent([&](env::VBComponentsEventsSink& sink) { sink.ItemAdded(added); });
    return added;
}

}  // namespace arbolet::disk
