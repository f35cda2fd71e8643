// Taking a component out of its project (its entry leaves the project file) and closing a
// project; the files stay.
#include <algorithm>

#include "base/vb_error.h"
#include "disk/component_entry.h"
#include "disk/disk_environment.h"
#include "disk/disk_objects.h"
#include "environment/event_hub.h"

namespace arbolet::disk {

void DiskComponents::Remove(const env::VBComponentRef& component) {
    constexpr const char* kSource = "VBComponents.Remove";
    const auto project = std::static_pointer_cast<DiskProject>(Parent());
    if (!project) env::enverr::RaiseObjectNotSet(kSource);
    const auto found = std::find(items.begin(), items.end(), component);
    if (found == items.end()) env::enverr::RaiseNotInCollection(kSource);
    const std::shared_ptr<DiskComponent> removed = *found;
    for (const ComponentEntry& entry : ComponentEntries(project->Text())) {
        if (entry.kind == removed->entryKind && entry.path == removed->entryPath) {
            project->EditText().RemoveTopLevelEntry(entry.line);
            break;
        }
    }
    items.erase(found);
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
