// Building the project tree from the environment, and the custom folder operations.
#include "explorer/project_explorer.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "base/utf8.h"

namespace arbolet::explorer {
namespace {

// VB's Replace: every non-overlapping occurrence, in one pass from the left, case-sensitive.
std::string ReplaceAll(std::string_view text, std::string_view find, std::string_view with) {
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = text.find(find); at != std::string_view::npos;
         at = text.find(find, from)) {
        result.append(text.substr(from, at - from)).append(with);
        from = at + find.size();
    }
    result.append(text.substr(from));
    return result;
}

std::string Bracketed(std::string_view folderName) {
    return ";" + std::string(folderName) + ";";
}

std::vector<std::string_view> SplitAt(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (std::size_t at = text.find(separator); at != std::string_view::npos;
         at = text.find(separator)) {
        parts.push_back(text.substr(0, at));
        text.remove_prefix(at + 1);
    }
    parts.push_back(text);
    return parts;
}

void WriteFolderList(env::VBProject& project, std::string_view list) {
    try {
        project.WriteProperty(kFolderSection, kFolderProperty, list);
    } catch (const std::exception&) {
        // A project that does not take the list keeps its old one; nothing to report.
    }
}

}  // namespace

ProjectExplorer::ProjectExplorer(std::shared_ptr<env::VBE> vbe, tree::TreeView& treeView,
                                 UiServices& ui, analysis::IDisplayOptionSource* displayOptions)
    : vbe_(std::move(vbe)),
      treeView_(treeView),
      ui_(ui),
      displayOptions_(displayOptions != nullptr ? *displayOptions : defaultOptions_) {}

ProjectExplorer::~ProjectExplorer() {
    DisconnectEventSources();
}

bool ProjectExplorer::NodeExists(std::string_view key) const {
    return Nodes().Exists(key);
}

std::string ProjectExplorer::GetComponentFolder(const env::VBComponent& component) const {
    try {
        std::string folder = component.ReadProperty(kFolderProperty);
        if (!folder.empty()) return folder;
    } catch (const std::exception&) {
        // No stored folder, or no store at all: the component shows in its fixed group.
    }
    return std::string(FixedGroupCaption(component.Type()));
}

tree::NodeRef ProjectExplorer::GetFolderNode(std::string_view projectName,
                                             std::string_view folderName) {
    const std::string projectKey = ProjectKey(projectName);
    if (!NodeExists(projectKey)) return nullptr;
    const tree::NodeRef projectNode = Nodes().Item(projectKey);
    return AddSortedFolderNode(*projectNode, projectName, folderName);
}

// Folders are ordered by name ignoring case, and a name equal to an existing folder's, in any
// letter case, is that folder wherever it stands.
tree::NodeRef ProjectExplorer::AddSortedFolderNode(const tree::Node& projectNode,
                                                   std::string_view projectName,
                                                   std::string_view folderName) {
    const std::string key = FolderKey(folderName, projectName);
    const std::string wanted = text::ToLower(folderName);
    const tree::Node* relative = &projectNode;
    auto relationship = tree::Relationship::Child;
    for (tree::NodeRef child = projectNode.Child(); child; child = child->Next()) {
        const std::string name =
            text::ToLower(ReadKey(tree::NodeKind::Folder, child->Key()).folder);
        if (name == wanted) return child;
        if (name > wanted) {
            relative = child.get();
            relationship = tree::Relationship::Previous;
            break;
        }
    }
    try {
        return Nodes().Add(relative, relationship, key, folderName, tree::NodeKind::Folder);
    } catch (const std::exception&) {
        if (NodeExists(key)) return Nodes().Item(key);
        return nullptr;
    }
}

tree::NodeRef ProjectExplorer::AddComponentNode(std::string_view componentName,
                                                std::string_view folderName,
                                                std::string_view projectName) {
    const tree::NodeRef folderNode = GetFolderNode(projectName, folderName);
    if (!folderNode) return nullptr;
    const std::string key = ComponentKey(componentName, projectName);
    tree::NodeRef componentNode = NodeExists(key)
                                      ? Nodes().Item(key)
                                      : AddSortedComponentNode(*folderNode, key, componentName);
    ShowPlaceholder(*componentNode);
    return componentNode;
}

// Components are ordered by their lower-cased keys, which begin with the component name.
tree::NodeRef ProjectExplorer::AddSortedComponentNode(const tree::Node& folderNode,
                                                      const std::string& key,
                                                      std::string_view componentName) {
    const std::string wanted = text::ToLower(key);
    const tree::Node* relative = &folderNode;
    auto relationship = tree::Relationship::Child;
    for (tree::NodeRef child = folderNode.Child(); child; child = child->Next()) {
        if (text::ToLower(child->Key()) > wanted) {
            relative = child.get();
            relationship = tree::Relationship::Previous;
            break;
        }
    }
    return Nodes().Add(relative, relationship, key, componentName, tree::NodeKind::Component,
                       kComponentImage);
}

std::string ProjectExplorer::ReadFolderList(const env::VBProject& project) {
    try {
        return project.ReadProperty(kFolderSection, kFolderProperty);
    } catch (const std::exception&) {
        return {};
    }
}

void ProjectExplorer::LoadProject(const env::VBProject& project) {
    try {
        const std::string projectName = project.Name();
        const std::string projectKey = ProjectKey(projectName);
        tree::NodeRef projectNode =
            NodeExists(projectKey)
                ? Nodes().Item(projectKey)
                : Nodes().Add(nullptr, tree::Relationship::Last, projectKey, projectName,
                              tree::NodeKind::Project, kProjectImage);
        LoadFolders(project, projectName);
        LoadComponents(project, projectName);
        MarkStartProject(projectName, *projectNode);
    } catch (const std::exception&) {
        // A project the environment cannot describe keeps whatever part of it was built.
    }
}

// Every persisted folder is shown, also when no component is in it.
void ProjectExplorer::LoadFolders(const env::VBProject& project, const std::string& projectName) {
    const std::string list = ReadFolderList(project);
    for (std::string_view element : SplitAt(list, ';')) {
        const std::string_view folderName = text::Trim(element);
        if (!folderName.empty()) GetFolderNode(projectName, folderName);
    }
}

// Components go in from the last in tree order to the first, so that each one's place is in
// front of its folder's first child, found in one comparison: a project of 20,000 components
// loads in linear time whatever order its file lists them in.
void ProjectExplorer::LoadComponents(const env::VBProject& project,
                                     const std::string& projectName) {
    struct Listed {
        std::string order;  // what sorted insertion compares: the lower-cased key
        std::string name;
        std::string folder;
    };
    std::vector<Listed> listed;
    const auto components = project.VBComponents();
    if (!components) return;
    const std::int32_t count = components->Count();
    for (std::int32_t i = 1; i <= count; ++i) {
        try {
            const env::VBComponentRef component = components->Item(i);
            std::string name = ComponentDisplayName(*component);
            listed.push_back({text::ToLower(ComponentKey(name, projectName)), std::move(name),
                              GetComponentFolder(*component)});
        } catch (const std::exception&) {
            // One component the environment cannot describe does not keep the others out.
        }
    }
    // Stable, so that of two components with the same key the one listed first is shown.
    std::stable_sort(listed.begin(), listed.end(),
                     [](const Listed& a, const Listed& b) { return a.order > b.order; });
    for (const Listed& component : listed) {
        try {
            AddComponentNode(component.name, component.folder, projectName);
        } catch (const std::exception&) {
            // A node the tree refuses leaves the others in place.
        }
    }
}

void ProjectExplorer::MarkStartProject(const std::string& projectName,
                                       tree::Node& projectNode) const {
    if (!vbe_) return;
    const env::VBProjectRef start = vbe_->VBProjects()->StartProject();
    if (start && start->Name() == projectName) projectNode.SetBold(true);
}

void ProjectExplorer::RefreshProjects() {
    if (vbe_) TakeEventSources();
    const tree::UpdateScope update(treeView_);
    d_components.clear();
    if (vbe_) {
        Nodes().Clear();
        try {
            const auto projects = vbe_->VBProjects();
            const std::int32_t count = projects->Count();
            for (std::int32_t i = 1; i <= count; ++i)
                LoadProject(*projects->Item(i));
        } catch (const std::exception&) {
            // The projects loaded so far stay in the tree.
        }
    }
}

void ProjectExplorer::AddProjectFolder(env::VBProject& project, std::string_view folderName) {
    std::string list = ReadFolderList(project);
    if (list.find(Bracketed(folderName)) == std::string::npos) {
        // Joining may double a separator (an empty list, a list without closing ";"); one pass
        // of the replacement removes it. An empty name can leave an empty entry, which loading
        // skips.
        list = ReplaceAll(list + Bracketed(folderName), ";;", ";");
    }
    WriteFolderList(project, list);
}

void ProjectExplorer::RemoveProjectFolder(env::VBProject& project, std::string_view folderName) {
    const std::string list = ReadFolderList(project);
    WriteFolderList(project, ReplaceAll(list, Bracketed(folderName), ";"));
}

Outcome ProjectExplorer::SetComponentFolder(env::VBComponent& component,
                                            std::string_view folderName) {
    std::string current;
    try {
        current = GetComponentFolder(component);
    } catch (const std::exception& error) {
        return Outcome::Failed(error.what());
    }
    if (text::ToLower(current) == text::ToLower(folderName)) return Outcome::Done();
    try {
        component.WriteProperty(kFolderProperty, folderName);
    } catch (const std::exception&) {
        return Refuse("The component '" + ComponentDisplayName(component) +
                          "' does not support extended properties.",
                      MsgBoxIcon::Information, "Unable to set folder");
    }
    try {
        AddProjectFolder(*env::ProjectOf(component), folderName);
    } catch (const std::exception&) {
        // A component without project has no list to record the folder in.
    }
    return Outcome::Done();
}

std::string ProjectExplorer::NewFolderRefusal(const env::VBProject& project,
                                              std::string_view folderName) const {
    const std::string_view trimmed = text::Trim(folderName);
    // Loading trims names and skips blank ones: a blank folder could never be seen or removed.
    if (!IsValidFolderName(folderName) || trimmed.empty())
        return "Not a valid folder name, please try again.";
    const std::string wanted = text::ToLower(trimmed);
    const auto taken = [&](std::string_view existing) {
        return text::ToLower(text::Trim(existing)) == wanted;
    };
    std::optional<std::string> existing;
    const std::string list = ReadFolderList(project);
    for (std::size_t start = 0; start < list.size() && !existing;) {
        const std::size_t end = std::min(list.find(';', start), list.size());
        const std::string_view entry = std::string_view(list).substr(start, end - start);
        if (taken(entry)) existing = std::string(text::Trim(entry));
        start = end + 1;
    }
    const std::string projectKey = ProjectKey(project.Name());
    if (!existing && NodeExists(projectKey)) {
        for (tree::NodeRef node = Nodes().Item(projectKey)->Child(); node && !existing;
             node = node->Next()) {
            if (node->Kind() == tree::NodeKind::Folder && taken(node->Text()))
                existing = node->Text();
        }
    }
    // Folder names compare without regard to case, so a second spelling would be the same node.
    if (existing) return "A folder named '" + *existing + "' already exists.";
    return {};
}

Outcome ProjectExplorer::AddFolder(env::VBProject& project, std::string_view folderName) {
    if (const std::string refusal = NewFolderRefusal(project, folderName); !refusal.empty()) {
        return Refuse(refusal, MsgBoxIcon::Information, "Invalid Folder Name");
    }
    try {
        GetFolderNode(project.Name(), folderName);
    } catch (const std::exception&) {
        // The folder is still recorded and shows at the next reload.
    }
    AddProjectFolder(project, folderName);
    return Outcome::Done();
}

void ProjectExplorer::RemoveFolder(env::VBProject& project, std::string_view folderName) {
    RemoveProjectFolder(project, folderName);
    const std::string wanted = text::ToLower(folderName);
    if (const auto components = project.VBComponents()) {
        const std::int32_t count = components->Count();
        for (std::int32_t i = 1; i <= count; ++i) {
            try {
                const env::VBComponentRef component = components->Item(i);
                if (text::ToLower(GetComponentFolder(*component)) == wanted) {
                    SetComponentFolder(*component, "");
                }
            } catch (const std::exception&) {
                // A component that cannot be read or changed stays where it is.
            }
        }
    }
    RefreshProjects();
}

// Asks until the answer is empty (also Cancel) or a name the project can take as a new folder.
std::string ProjectExplorer::AskFolderName(const env::VBProject& project) {
    std::string answer = "New Folder";
    while (true) {
        answer = ui_.InputBox(
            "Enter the name of the new folder you want to add:", "Enter Folder Name", answer);
        if (answer.empty()) return answer;
        const std::string refusal = NewFolderRefusal(project, answer);
        if (refusal.empty()) return answer;
        ui_.MsgBox(refusal, MsgBoxIcon::Information, "Invalid Folder Name");
    }
}

Outcome ProjectExplorer::NewFolder(std::string_view nodeKey) {
    if (nodeKey.empty()) {
        ui_.Beep();
        return Outcome::Refused({});
    }
    try {
        if (!NodeExists(nodeKey))
            return Outcome::Failed("No node has the key " + std::string(nodeKey));
        const env::VBProjectRef project = ProjectOfNode(*Nodes().Item(nodeKey));
        if (!project) return Outcome::Failed("The node belongs to no open project");
        const std::string folderName = AskFolderName(*project);
        if (folderName.empty()) return Outcome::Refused({});
        return AddFolder(*project, folderName);
    } catch (const std::exception& error) {
        // A project that has gone meanwhile gets no folder.
        return Outcome::Failed(error.what());
    }
}

// The project node above any node: the top-level ancestor.
tree::NodeRef ProjectExplorer::ProjectNodeOf(const tree::Node& node) const {
    tree::NodeRef up = node.Parent();
    if (!up) return NodeExists(node.Key()) ? Nodes().Item(node.Key()) : nullptr;
    while (tree::NodeRef parent = up->Parent())
        up = parent;
    return up;
}

env::VBProjectRef ProjectExplorer::ProjectOfNode(const tree::Node& node) const {
    const tree::NodeRef projectNode = ProjectNodeOf(node);
    if (!projectNode || projectNode->Kind() != tree::NodeKind::Project) return nullptr;
    try {
        return FindProject(ReadKey(tree::NodeKind::Project, projectNode->Key()).project);
    } catch (const std::exception&) {
        return nullptr;
    }
}

env::VBComponentRef ProjectExplorer::ComponentOfNode(const tree::Node& node) const {
    const KeyNames names = ReadKey(node.Kind(), node.Key());
    if (names.componentKey.empty()) return nullptr;
    try {
        return FindComponent(names.componentKey);
    } catch (const std::exception&) {
        return nullptr;
    }
}

Outcome ProjectExplorer::SetStartUpProject(const tree::Node& node) {
    try {
        const env::VBProjectRef project = ProjectOfNode(node);
        if (!project) return Outcome::Failed("The node belongs to no open project");
        const auto projects = vbe_->VBProjects();
        if (const env::VBProjectRef previous = projects->StartProject()) {
            const std::string previousKey = ProjectKey(previous->Name());
            if (NodeExists(previousKey)) Nodes().Item(previousKey)->SetBold(false);
        }
        projects->SetStartProject(project);
        const std::string key = ProjectKey(project->Name());
        if (NodeExists(key)) Nodes().Item(key)->SetBold(true);
        return Outcome::Done();
    } catch (const std::exception& error) {
        return Outcome::Failed(error.what());
    }
}

// A component that has never been saved has no file to come back from, so it is not removed.
Outcome ProjectExplorer::RemoveComponent(const tree::Node& node) {
    try {
        const env::VBComponentRef component = ComponentOfNode(node);
        if (!component) return Outcome::Failed("The node stands for no component");
        if (component->FileCount() < 1 || component->FileNames(1).empty()) {
            return Refuse("Must Be Saved First.", MsgBoxIcon::Information, {});
        }
        component->Collection()->Remove(component);
        return Outcome::Done();
    } catch (const std::exception& error) {
        return Outcome::Failed(error.what());
    }
}

Outcome ProjectExplorer::Refuse(std::string_view prompt, MsgBoxIcon icon, std::string_view title) {
    ui_.MsgBox(prompt, icon, title);
    return Outcome::Refused(prompt);
}

}  // namespace arbolet::explorer
