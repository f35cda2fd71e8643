// Keeping the tree in step with the environment: the project and component event handlers, each
// touching only the nodes of the project or component concerned.
#include <exception>

#include "explorer/project_explorer.h"

namespace arbolet::explorer {

// The handler side of the environment's event sources: forwards to the explorer, which
// disconnects them before it goes.
class ProjectExplorer::ProjectSink final : public env::VBProjectsEventsSink {
  public:
    explicit ProjectSink(ProjectExplorer& owner) : owner_(owner) {}
    void ItemAdded(const env::VBProjectRef& project) override {
        owner_.ProjectAdded(*project);
        owner_.FollowComponents(project);
    }
    void ItemRemoved(const env::VBProjectRef& project) override { owner_.ProjectRemoved(*project); }
    void ItemRenamed(const env::VBProjectRef& project, std::string_view oldName) override {
        owner_.ProjectRenamed(*project, oldName);
    }

  private:
    ProjectExplorer& owner_;
};

class ProjectExplorer::ComponentSink final : public env::VBComponentsEventsSink {
  public:
    explicit ComponentSink(ProjectExplorer& owner) : owner_(owner) {}
    void ItemAdded(const env::VBComponentRef& component) override {
        owner_.ComponentAdded(*component);
    }
    void ItemRemoved(const env::VBComponentRef& component) override {
        owner_.ComponentRemoved(*component);
    }
    void ItemRenamed(const env::VBComponentRef& component, std::string_view oldName) override {
        owner_.ComponentRenamed(*component, oldName);
    }
    void ItemActivated(const env::VBComponentRef& component) override {
        owner_.ComponentActivated(*component);
    }
    void ItemReloaded(const env::VBComponentRef& component) override {
        owner_.ComponentReloaded(*component);
    }

  private:
    ProjectExplorer& owner_;
};

void ProjectExplorer::DisconnectEventSources() {
    if (projEvents && projectCookie_ != 0) projEvents->Unadvise(projectCookie_);
    projectCookie_ = 0;
    while (!componentEvents_.empty())
        StopFollowing(std::move(componentEvents_.extract(componentEvents_.begin()).mapped()));
}

// The environment raises component events per project: each open project is followed on its
// own, so that a group's other projects and projects opened later stay current too.
void ProjectExplorer::TakeEventSources() {
    DisconnectEventSources();
    if (!projectSink_) projectSink_ = std::make_shared<ProjectSink>(*this);
    if (!componentSink_) componentSink_ = std::make_shared<ComponentSink>(*this);
    try {
        projEvents = vbe_->Events()->VBProjectsEvents();
        if (projEvents) projectCookie_ = projEvents->Advise(projectSink_);
        const auto projects = vbe_->VBProjects();
        for (std::int32_t i = 1; projects && i <= projects->Count(); ++i)
            FollowComponents(projects->Item(i));
    } catch (const std::exception&) {
        // Without event sources the tree is still built; it is just not kept current.
    }
}

void ProjectExplorer::FollowComponents(const env::VBProjectRef& project) {
    if (!project || !vbe_ || !componentSink_) return;
    try {
        const std::string name = project->Name();
        if (componentEvents_.contains(name)) return;
        auto source = vbe_->Events()->VBComponentsEvents(project);
        if (!source) return;
        const auto cookie = source->Advise(componentSink_);
        componentEvents_[name] = {std::move(source), cookie};
    } catch (const std::exception&) {
        // A project whose events cannot be had is shown, just not kept current.
    }
}

void ProjectExplorer::StopFollowing(ComponentSubscription subscription) {
    try {
        subscription.source->Unadvise(subscription.cookie);
    } catch (const std::exception&) {
        // The source went with its project.
    }
}

void ProjectExplorer::StopFollowingComponents(const std::string& projectName) {
    const auto found = componentEvents_.find(projectName);
    if (found == componentEvents_.end()) return;
    StopFollowing(std::move(componentEvents_.extract(found).mapped()));
}

std::shared_ptr<env::VBComponentsEvents> ProjectExplorer::ComponentEventsOf(
    std::string_view projectName) const {
    const auto found = componentEvents_.find(projectName);
    return found == componentEvents_.end() ? nullptr : found->second.source;
}

void ProjectExplorer::RemoveComponentNode(std::string_view componentName,
                                          std::string_view projectName) {
    const std::string key = ComponentKey(componentName, projectName);
    try {
        if (NodeExists(key)) Nodes().Remove(key);
    } catch (const std::exception&) {
        // Gone meanwhile: nothing to remove.
    }
    d_components.erase(key);
}

void ProjectExplorer::ProjectAdded(const env::VBProject& project) {
    LoadProject(project);
}

void ProjectExplorer::ProjectRemoved(const env::VBProject& project) {
    try {
        const std::string name = project.Name();
        StopFollowingComponents(name);
        const std::string key = ProjectKey(name);
        if (NodeExists(key)) Nodes().Remove(key);
    } catch (const std::exception&) {
        // A project the environment can no longer name keeps its node until the next reload.
    }
}

void ProjectExplorer::ProjectRenamed(const env::VBProject& project, std::string_view oldName) {
    try {
        const std::string oldKey = ProjectKey(oldName);
        if (NodeExists(oldKey)) Nodes().Remove(oldKey);
    } catch (const std::exception&) {
        // The old node is gone already.
    }
    LoadProject(project);
    // The component events stay those of the same project, now known by its new name.
    const auto found = componentEvents_.find(oldName);
    if (found == componentEvents_.end()) return;
    auto node = componentEvents_.extract(found);
    try {
        node.key() = project.Name();
    } catch (const std::exception&) {
        return StopFollowing(std::move(node.mapped()));
    }
    const auto inserted = componentEvents_.insert(std::move(node));
    if (!inserted.inserted) StopFollowing(std::move(inserted.node.mapped()));
}

// Puts the component's node into the folder it belongs to, creating the folder node if needed.
void ProjectExplorer::ShowComponentAgain(const env::VBComponent& component,
                                         const std::string& projectName) {
    const std::string folder = GetComponentFolder(component);
    if (!GetFolderNode(projectName, folder)) return;
    AddComponentNode(ComponentDisplayName(component), folder, projectName);
}

// `name`: the name the component had, when it was renamed.
void ProjectExplorer::TellCodeChanged(const env::VBComponent& component, bool gone,
                                      std::string_view name) const {
    if (!ComponentCodeChanged) return;
    try {
        const std::string displayName =
            name.empty() ? ComponentDisplayName(component) : std::string(name);
        ComponentCodeChanged(ComponentKey(displayName, env::ProjectOf(component)->Name()), gone);
    } catch (const std::exception&) {
        // A component without project is in no tree.
    }
}

void ProjectExplorer::ComponentAdded(const env::VBComponent& component) {
    TellCodeChanged(component);
    try {
        ShowComponentAgain(component, env::ProjectOf(component)->Name());
    } catch (const std::exception&) {
        // A component without project has no place in the tree.
    }
}

void ProjectExplorer::ComponentRemoved(const env::VBComponent& component) {
    TellCodeChanged(component, true);
    try {
        RemoveComponentNode(ComponentDisplayName(component), env::ProjectOf(component)->Name());
    } catch (const std::exception&) {
        // Nothing to remove.
    }
}

void ProjectExplorer::ComponentRenamed(const env::VBComponent& component,
                                       std::string_view oldName) {
    TellCodeChanged(component, true, oldName);
    TellCodeChanged(component);
    try {
        const std::string projectName = env::ProjectOf(component)->Name();
        RemoveComponentNode(oldName, projectName);
        ShowComponentAgain(component, projectName);
    } catch (const std::exception&) {
        // The tree catches up at the next reload.
    }
}

// An open code tree shows the code as it was; closing it makes the next expansion read the
// reloaded code.
void ProjectExplorer::ComponentReloaded(const env::VBComponent& component) {
    TellCodeChanged(component);
    try {
        const std::string key =
            ComponentKey(ComponentDisplayName(component), env::ProjectOf(component)->Name());
        if (!NodeExists(key)) return;
        const tree::NodeRef node = Nodes().Item(key);
        if (node->Expanded()) CollapseNode(*node);
    } catch (const std::exception&) {
        // A node that went missing needs no refresh.
    }
}

// An expanded node is left where it is, so the developer keeps their place in its code.
void ProjectExplorer::ComponentActivated(const env::VBComponent& component) {
    try {
        const std::string key =
            ComponentKey(ComponentDisplayName(component), env::ProjectOf(component)->Name());
        if (!NodeExists(key)) return;
        const tree::NodeRef node = Nodes().Item(key);
        if (node->Expanded()) return;
        node->EnsureVisible();
        node->SetSelected(true);
    } catch (const std::exception&) {
        // Nothing to show.
    }
}

}  // namespace arbolet::explorer
