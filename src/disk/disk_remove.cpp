// Taking a component out of its project (its entries leave the project file, and a start-up
// object that named it falls back as the IDE's does) and closing a project; the files stay.
#include <algorithm>
#include <functional>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "disk/component_entry.h"
#include "disk/disk_environment.h"
#include "disk/disk_objects.h"
#include "disk/vb_path.h"
#include "environment/event_hub.h"

namespace arbolet::disk {
namespace fs = std::filesystem;

namespace {

// `Sub Main` or `Public [Static] Sub Main`, whatever follows the name; a private one cannot
// start a program.
bool DeclaresSubMain(std::string_view line) {
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos) return false;
    std::string rest = text::ToLower(line.substr(first));
    const auto take = [&](std::string_view word) {
        if (!rest.starts_with(word) || rest.size() == word.size() ||
            (rest[word.size()] != ' ' && rest[word.size()] != '\t')) {
            return false;
        }
        rest.erase(0, std::min(rest.find_first_not_of(" \t", word.size()), rest.size()));
        return true;
    };
    take("public");
    take("static");
    if (!take("sub") || !rest.starts_with("main")) return false;
    const std::string_view after = std::string_view(rest).substr(4);
    return after.empty() || after[0] == '(' || after[0] == ' ' || after[0] == '\t' ||
           after[0] == '\'';
}

bool ProjectHasSubMain(const DiskProject& project) {
    for (const auto& component : project.components->items) {
        if (component->Type() != env::ComponentType::StdModule) continue;
        const auto code = component->CodeModule();
        const std::int32_t count = code ? code->CountOfLines() : 0;
        for (std::int32_t line = 1; line <= count; ++line) {
            if (DeclaresSubMain(code->Lines(line, 1))) return true;
        }
    }
    return false;
}

// Every entry that names the file, whatever the spelling of its path: one left behind would
// bring the component back at the next load.
std::vector<std::size_t> EntryLinesOf(const DiskProject& project, const DiskComponent& component) {
    const fs::path identity = PathIdentity(component.Path());
    const fs::path folder = project.Path().parent_path();
    std::vector<std::size_t> lines;
    for (const ComponentEntry& entry : ComponentEntries(project.Text())) {
        bool names = entry.kind == component.entryKind && entry.path == component.entryPath;
        if (!names) {
            const auto resolved = ResolveVbPath(folder, entry.path);
            names = resolved && PathIdentity(*resolved) == identity;
        }
        if (names) lines.push_back(entry.line);
    }
    return lines;
}

// A start-up object that is gone gives way to Sub Main when a module has one, else to none.
void ReplaceStartup(DiskProject& project, std::string_view removedName) {
    for (const ProjectEntry& entry : project.Text().TopLevel()) {
        if (text::ToLower(entry.key) != "startup") continue;
        if (text::ToLower(Unquoted(text::Trim(entry.value))) != text::ToLower(removedName)) return;
        const std::string startup = ProjectHasSubMain(project) ? "Sub Main" : "(None)";
        project.EditText().SetTopLevelValue(entry.line, "\"" + startup + "\"");
        return;
    }
}

}  // namespace

std::string StartupObject(const env::VBProject& project) {
    const auto* disk = dynamic_cast<const DiskProject*>(&project);
    if (!disk) return {};
    return Unquoted(text::Trim(disk->Text().TopLevelValue("Startup").value_or("")));
}

void DiskComponents::Remove(const env::VBComponentRef& component) {
    constexpr const char* kSource = "VBComponents.Remove";
    const auto project = std::static_pointer_cast<DiskProject>(Parent());
    if (!project) env::enverr::RaiseObjectNotSet(kSource);
    const auto found = std::find(items.begin(), items.end(), component);
    if (found == items.end()) env::enverr::RaiseNotInCollection(kSource);
    const std::shared_ptr<DiskComponent> removed = *found;
    std::vector<std::size_t> lines = EntryLinesOf(*project, *removed);
    // From the bottom up, so that the lines above keep their numbers.
    std::sort(lines.begin(), lines.end(), std::greater<>());
    for (const std::size_t line : lines)
        project->EditText().RemoveTopLevelEntry(line);
    items.erase(found);
    ReplaceStartup(*project, removed->Name());
    const env::VBComponentRef gone = removed;
    project->RaiseComponentEvent(
        [&](env::VBComponentsEventsSink& sink) { sink.ItemRemoved(gone); });
    removed->collection.reset();
}

void DiskEnvironment::RemoveProject(const env::VBProjectRef& project) {
    auto& items = projects_->items;
    const auto found = std::find(items.begin(), items.end(), project);
    if (found == items.end()) env::enverr::RaiseNotInCollection("VBProjects.Remove");
    const std::shared_ptr<DiskProject> removed = *found;
    items.erase(found);
    if (projects_->start.lock() == project) {
        projects_->start = items.empty() ? std::weak_ptr<env::VBProject>() : items.front();
    }
    if (active_.lock() == project) active_ = projects_->start;
    const env::VBProjectRef gone = removed;
    events_->RaiseProjectEvent([&](env::VBProjectsEventsSink& sink) { sink.ItemRemoved(gone); });
    events_->ForgetProject(removed.get());
}

}  // namespace arbolet::disk
