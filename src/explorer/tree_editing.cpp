// Editing in the tree: renaming projects, components and folders in place, moving components
// between folders, and adding files dropped from the file system.
#include <exception>
#include <optional>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "explorer/project_explorer.h"

namespace arbolet::explorer {
namespace {

// The file a dropped file stands for: component files as they are, companion files by the
// component file of the same base name; nullopt for anything else.
std::optional<std::string> ComponentFileFor(const std::string& file) {
    const auto dot = file.rfind('.');
    if (dot == std::string::npos) return std::nullopt;
    const std::string extension = text::ToLower(std::string_view(file).substr(dot));
    static constexpr std::pair<std::string_view, std::string_view> kMainFile[] = {
        {".bas", ".bas"}, {".cls", ".cls"}, {".frm", ".frm"}, {".dob", ".dob"}, {".dsr", ".dsr"},
        {".ctl", ".ctl"}, {".pag", ".pag"}, {".frx", ".frm"}, {".dox", ".dob"}, {".vbd", ".dob"},
        {".dsx", ".dsr"}, {".dca", ".dsr"}, {".pgx", ".pag"}, {".ctx", ".ctl"},
    };
    for (const auto& [dropped, main] : kMainFile) {
        if (extension == dropped) return file.substr(0, dot) + std::string(main);
    }
    return std::nullopt;
}

}  // namespace

Outcome ProjectExplorer::AfterLabelEdit(tree::Node& node, std::string_view newText) {
    // A blank folder name would be trimmed away on loading, leaving a folder nobody sees.
    const bool blankFolder = node.Kind() == tree::NodeKind::Folder && text::Trim(newText).empty();
    if (!IsValidFolderName(newText) || blankFolder) {
        return Refuse("Not a valid name.", MsgBoxIcon::Information, "Invalid Name");
    }
    try {
        switch (node.Kind()) {
            case tree::NodeKind::Project:
                return RenameProject(node, newText);
            case tree::NodeKind::Component:
                return RenameComponent(node, newText);
            case tree::NodeKind::Folder:
                return RenameFolder(node, newText);
            default:
                return Outcome::Refused({});
        }
    } catch (const VbError& error) {
        // The environment's own rules on names (an identifier, not a reserved word, not too
        // long, not in use) are refusals it explains.
        if (error.Number == env::enverr::kInvalidPropertyValue) {
            return Refuse(error.Description, MsgBoxIcon::Exclamation, "Invalid Name");
        }
        return Outcome::Failed(error.Description);
    } catch (const std::exception& error) {
        return Outcome::Failed(error.what());
    }
}

// The environment renames the project; the full reload shows it under the new name.
Outcome ProjectExplorer::RenameProject(tree::Node& node, std::string_view newText) {
    const env::VBProjectRef project = ProjectOfNode(node);
    if (!project) return Outcome::Failed("The project is no longer open");
    if (NodeExists(ProjectKey(newText))) {
        return Refuse("You already have a project with this name.", MsgBoxIcon::Exclamation,
                      "Invalid Name");
    }
    project->SetName(newText);
    RefreshProjects();
    return Outcome::Done();
}

// The environment renames the component and its rename event moves the node to its new key.
Outcome ProjectExplorer::RenameComponent(tree::Node& node, std::string_view newText) {
    const KeyNames names = ReadKey(tree::NodeKind::Component, node.Key());
    if (NodeExists(ComponentKey(newText, names.project))) {
        return Refuse("You already have an object with this name.", MsgBoxIcon::Exclamation,
                      "Invalid Name");
    }
    const env::VBComponentRef component = FindComponent(names.componentKey);
    if (!component) return Outcome::Failed("The component is no longer in its project");
    component->SetName(newText);
    return Outcome::Done();
}

// The components of the folder take the new name, which for a fixed group moves every component
// of that kind into a custom folder of the new name.
Outcome ProjectExplorer::RenameFolder(tree::Node& node, std::string_view newText) {
    const KeyNames names = ReadKey(tree::NodeKind::Folder, node.Key());
    const env::VBProjectRef project = FindProject(names.project);
    if (!project) return Outcome::Failed("The project is no longer open");
    const std::string& oldName = names.folder;
    if (const auto components = project->VBComponents()) {
        const std::int32_t count = components->Count();
        for (std::int32_t i = 1; i <= count; ++i) {
            try {
                const env::VBComponentRef component = components->Item(i);
                if (GetComponentFolder(*component) == oldName) {
                    SetComponentFolder(*component, newText);
                }
            } catch (const std::exception&) {
                // A component that cannot be changed stays in the old folder.
            }
        }
    }
    RemoveProjectFolder(*project, oldName);
    AddProjectFolder(*project, newText);

    const bool wasExpanded = node.Expanded();
    const std::string projectKey = ProjectKey(names.project);
    RefreshProjects();
    if (NodeExists(projectKey)) Nodes().Item(projectKey)->SetExpanded(true);
    const std::string newKey = FolderKey(newText, names.project);
    if (NodeExists(newKey)) Nodes().Item(newKey)->SetExpanded(wasExpanded);
    return Outcome::Done();
}

// Takes the component's node out of its folder, and the folder node with it when it held only
// this component.
void ProjectExplorer::RemoveNodeAndEmptyFolder(const std::string& componentKey) {
    if (!NodeExists(componentKey)) return;
    const tree::NodeRef node = Nodes().Item(componentKey);
    const tree::NodeRef folder = node->Parent();
    if (folder && folder->Children() == 1) {
        Nodes().Remove(*folder);
    } else {
        Nodes().Remove(*node);
    }
    d_components.erase(componentKey);
}

Outcome ProjectExplorer::DropComponent(std::string_view draggedKey, tree::Node& target) {
    try {
        if (draggedKey.empty() || target.Kind() != tree::NodeKind::Folder) {
            return Outcome::Refused({});
        }
        const std::string key(draggedKey);
        if (!NodeExists(key)) return Outcome::Failed("No node has the key " + key);
        const tree::NodeRef dragged = Nodes().Item(key);
        if (dragged->Kind() != tree::NodeKind::Component) return Outcome::Refused({});
        const tree::NodeRef oldFolder = dragged->Parent();
        if (oldFolder && oldFolder->Key() == target.Key()) return Outcome::Done();
        const env::VBComponentRef component = FindComponent(key);
        if (!component) return Outcome::Failed("The component is no longer in its project");
        try {
            component->ReadProperty(kFolderProperty);
        } catch (const VbError& error) {
            if (error.Number == env::enverr::kNotSupported) {
                return Refuse(
                    "This component cannot be moved as it does not support extended "
                    "properties.",
                    MsgBoxIcon::Information, "Cannot Move File");
            }
        }
        const KeyNames names = ReadKey(tree::NodeKind::Component, key);
        const std::string folder = ReadKey(tree::NodeKind::Folder, target.Key()).folder;
        Outcome moved = SetComponentFolder(*component, folder);
        if (!moved.done()) return moved;
        RemoveNodeAndEmptyFolder(key);
        AddComponentNode(names.component, folder, names.project);
        return Outcome::Done();
    } catch (const std::exception& error) {
        // The tree stays as it was.
        return Outcome::Failed(error.what());
    }
}

Outcome ProjectExplorer::DropFiles(const std::vector<std::string>& files, tree::Node& target) {
    try {
        const tree::NodeKind kind = target.Kind();
        if (kind != tree::NodeKind::Folder && kind != tree::NodeKind::Project) {
            return Outcome::Refused({});
        }
        const env::VBProjectRef project = ProjectOfNode(target);
        if (!project) return Outcome::Failed("The project is no longer open");
        const std::string folder = ReadKey(kind, target.Key()).folder;
        const std::string customFolder = IsFixedGroupName(folder) ? std::string() : folder;
        std::optional<Outcome> first;
        bool anyComponentFile = false;
        for (const std::string& file : files) {
            if (const auto componentFile = ComponentFileFor(file)) {
                anyComponentFile = true;
                Outcome added = AddDroppedFile(*project, *componentFile, customFolder);
                if (!added.done() && !first) first = std::move(added);
            }
        }
        if (!anyComponentFile) return Outcome::Refused("None of the files is a component file.");
        return first ? *first : Outcome::Done();
    } catch (const std::exception& error) {
        // Files added so far stay added.
        return Outcome::Failed(error.what());
    }
}

Outcome ProjectExplorer::AddDroppedFile(env::VBProject& project, const std::string& file,
                                        const std::string& customFolder) {
    env::VBComponentRef added;
    try {
        added = project.VBComponents()->AddFile(file);
    } catch (const VbError& error) {
        if (error.Number == env::enverr::kFileAlreadyInProject) {
            return Refuse(file + " is already part of " + project.Name(), MsgBoxIcon::Information,
                          "Existing File");
        }
        // A component whose name is taken is refused by the project's rule, like an existing
        // file; anything else went wrong.
        if (error.Number == env::enverr::kInvalidPropertyValue) {
            return Refuse(error.Description, MsgBoxIcon::Critical, "Cannot Add File");
        }
        ui_.MsgBox(error.Description, MsgBoxIcon::Critical, "Cannot Add File");
        return Outcome::Failed(error.Description);
    } catch (const std::exception& error) {
        ui_.MsgBox(error.what(), MsgBoxIcon::Critical, "Cannot Add File");
        return Outcome::Failed(error.what());
    }
    if (!added || customFolder.empty()) return Outcome::Done();
    // A component that keeps no folder stays in its fixed group; it was added all the same.
    if (!SetComponentFolder(*added, customFolder).done()) return Outcome::Done();
    // The environment's ItemAdded may have shown it in its fixed group already.
    const std::string name = ComponentDisplayName(*added);
    RemoveNodeAndEmptyFolder(ComponentKey(name, project.Name()));
    AddComponentNode(name, customFolder, project.Name());
    return Outcome::Done();
}

}  // namespace arbolet::explorer
