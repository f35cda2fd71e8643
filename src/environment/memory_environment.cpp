// The in-memory environment: plain containers behind the object-model interfaces, and events
// raised on every change the way the IDE raises them.
#include "environment/memory_environment.h"

#include <algorithm>

#include "base/utf8.h"
#include "environment/collection_items.h"
#include "environment/event_hub.h"

namespace arbolet::env {
namespace {

std::vector<std::string> SplitCodeLines(std::string_view code) {
    std::vector<std::string> lines;
    if (code.empty()) return lines;
    std::size_t start = 0;
    while (true) {
        const std::size_t end = code.find("\r\n", start);
        lines.emplace_back(code.substr(start, end - start));
        if (end == std::string_view::npos) break;
        start = end + 2;
    }
    return lines;
}

bool HasPropertyStoreByDefault(ComponentType type) {
    return type != ComponentType::ResFile && type != ComponentType::RelatedDocument;
}

}  // namespace

// ---- collections ----

class MemoryProject::Components final : public ComponentList<MemoryComponent> {
  public:
    using ComponentList::ComponentList;
    void Remove(const VBComponentRef& component) override {
        const auto project = std::dynamic_pointer_cast<MemoryProject>(Parent());
        if (!project) env::enverr::RaiseObjectNotSet("VBComponents.Remove");
        project->RemoveComponent(component);
    }
};

class MemoryProjects final : public ProjectList<MemoryProject> {};

// ---- MemoryComponent ----

MemoryComponent::MemoryComponent(std::string name, ComponentType type, std::string fileName,
                                 std::string code)
    : name_(std::move(name)),
      type_(type),
      fileName_(std::move(fileName)),
      codeLines_(SplitCodeLines(code)) {
    SetHasPropertyStore(HasPropertyStoreByDefault(type));
}

std::int16_t MemoryComponent::FileCount() const {
    return fileName_.empty() ? 0 : 1;
}

std::string MemoryComponent::FileNames(std::int16_t index) const {
    if (index != 1 || fileName_.empty()) enverr::RaiseNotInCollection("VBComponent.FileNames");
    return fileName_;
}

std::string MemoryComponent::ReadProperty(std::string_view key) const {
    if (!properties_) enverr::RaiseNoPropertyStore("VBComponent.ReadProperty", name_);
    auto found = properties_->find(text::ToLower(key));
    if (found == properties_->end()) enverr::RaisePropertyNotFound("VBComponent.ReadProperty", key);
    return found->second;
}

void MemoryComponent::WriteProperty(std::string_view key, std::string_view value) {
    if (!properties_) enverr::RaiseNoPropertyStore("VBComponent.WriteProperty", name_);
    (*properties_)[text::ToLower(key)] = value;
}

std::shared_ptr<env::CodeModule> MemoryComponent::CodeModule() const {
    if (type_ == ComponentType::ResFile || type_ == ComponentType::RelatedDocument) return nullptr;
    return std::make_shared<LinesCodeModule>(codeLines_);
}

std::shared_ptr<env::VBComponents> MemoryComponent::Collection() const {
    return collection_.lock();
}

// As the IDE: the project renames it and raises the event.
void MemoryComponent::SetName(std::string_view name) {
    const auto components = collection_.lock();
    const auto project =
        components ? std::dynamic_pointer_cast<MemoryProject>(components->Parent()) : nullptr;
    if (!project) {
        name_ = name;
        return;
    }
    project->RenameComponent(shared_from_this(), std::string(name));
}

void MemoryComponent::SetHasPropertyStore(bool has) {
    if (!has) {
        properties_.reset();
    } else if (!properties_) {
        properties_.emplace();
    }
}

void MemoryComponent::SetCode(std::string code) {
    codeLines_ = SplitCodeLines(code);
}

// ---- MemoryProject ----

MemoryProject::MemoryProject(std::string name, std::string fileName)
    : name_(std::move(name)), fileName_(std::move(fileName)) {}

std::string MemoryProject::ReadProperty(std::string_view section, std::string_view key) const {
    auto found = properties_.find({text::ToLower(section), text::ToLower(key)});
    if (found == properties_.end()) enverr::RaisePropertyNotFound("VBProject.ReadProperty", key);
    return found->second;
}

void MemoryProject::WriteProperty(std::string_view section, std::string_view key,
                                  std::string_view value) {
    properties_[{text::ToLower(section), text::ToLower(key)}] = value;
}

void MemoryProject::SetName(std::string_view name) {
    const auto projects = collection_.lock();
    const auto events = EventsOrNull();
    const std::string oldName = std::exchange(name_, std::string(name));
    if (events && projects) {
        const VBProjectRef self = shared_from_this();
        events->RaiseProjectEvent([&](VBProjectsEventsSink& s) { s.ItemRenamed(self, oldName); });
    }
}

std::shared_ptr<env::VBComponents> MemoryProject::VBComponents() const {
    return components_;
}

std::shared_ptr<env::VBProjects> MemoryProject::Collection() const {
    return collection_.lock();
}

std::shared_ptr<EventHub> MemoryProject::EventsOrNull() const {
    return events_.lock();
}

std::shared_ptr<MemoryComponent> MemoryProject::AddComponent(std::string name, ComponentType type,
                                                             std::string code,
                                                             std::string fileName) {
    if (!components_) components_ = std::make_shared<Components>(weak_from_this());
    auto component = std::make_shared<MemoryComponent>(std::move(name), type, std::move(fileName),
                                                       std::move(code));
    component->collection_ = components_;
    components_->items.push_back(component);
    if (auto events = EventsOrNull()) {
        events->RaiseComponentEvent(this,
                                    [&](VBComponentsEventsSink& s) { s.ItemAdded(component); });
    }
    return component;
}

void MemoryProject::RemoveComponent(const VBComponentRef& component) {
    if (!components_) return;
    auto& items = components_->items;
    auto found = std::find(items.begin(), items.end(), component);
    if (found == items.end()) return;
    auto removed = *found;
    items.erase(found);
    if (auto events = EventsOrNull()) {
        events->RaiseComponentEvent(this,
                                    [&](VBComponentsEventsSink& s) { s.ItemRemoved(removed); });
    }
    removed->collection_.reset();
}

void MemoryProject::RenameComponent(const VBComponentRef& component, std::string newName) {
    if (!components_) return;
    auto& items = components_->items;
    auto found = std::find(items.begin(), items.end(), component);
    if (found == items.end()) return;
    const std::string oldName = std::exchange((*found)->name_, std::move(newName));
    if (auto events = EventsOrNull()) {
        events->RaiseComponentEvent(
            this, [&](VBComponentsEventsSink& s) { s.ItemRenamed(component, oldName); });
    }
}

// ---- MemoryEnvironment ----

MemoryEnvironment::MemoryEnvironment()
    : projects_(std::make_shared<MemoryProjects>()), events_(std::make_shared<EventHub>()) {}

std::shared_ptr<MemoryEnvironment> MemoryEnvironment::Create() {
    return std::shared_ptr<MemoryEnvironment>(new MemoryEnvironment());
}

std::shared_ptr<env::VBProjects> MemoryEnvironment::VBProjects() const {
    return projects_;
}

std::shared_ptr<env::Events> MemoryEnvironment::Events() const {
    return events_;
}

std::shared_ptr<MemoryProject> MemoryEnvironment::AddProject(std::string name,
                                                             std::string fileName) {
    auto project = std::make_shared<MemoryProject>(std::move(name), std::move(fileName));
    project->components_ = std::make_shared<MemoryProject::Components>(project);
    project->collection_ = projects_;
    project->events_ = events_;
    projects_->items.push_back(project);
    if (projects_->items.size() == 1) {
        projects_->start = project;
        active_ = project;
    }
    events_->RaiseProjectEvent([&](VBProjectsEventsSink& s) { s.ItemAdded(project); });
    return project;
}

void MemoryEnvironment::RemoveProject(const VBProjectRef& project) {
    auto& items = projects_->items;
    auto found = std::find(items.begin(), items.end(), project);
    if (found == items.end()) return;
    auto removed = *found;
    items.erase(found);
    events_->RaiseProjectEvent([&](VBProjectsEventsSink& s) { s.ItemRemoved(removed); });
    events_->ForgetProject(removed.get());
    removed->collection_.reset();
}

void MemoryEnvironment::RenameProject(const VBProjectRef& project, std::string newName) {
    auto& items = projects_->items;
    auto found = std::find(items.begin(), items.end(), project);
    if (found == items.end()) return;
    const std::string oldName = std::exchange((*found)->name_, std::move(newName));
    events_->RaiseProjectEvent([&](VBProjectsEventsSink& s) { s.ItemRenamed(project, oldName); });
}

}  // namespace arbolet::env
