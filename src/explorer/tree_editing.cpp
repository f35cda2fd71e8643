// Editing in the tree: renaming projects, components and folders in place, moving components
// between folders, and adding files dropped from the file system.
#include <exception>
#include <optional>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "explorer/project_explorer.h"

namespace arbolet::explorer {
namespace {

constexpr std::string_view kFolderKeyPrefix = "Type~";

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

void ProjectExplorer::AfterLabelEdit(tree::Node& node, std::string_view newText, bool& cancel) {
    if (!IsValidFolderName(newText)) {
        ui_.MsgBox("Not a valid name.", MsgBoxIcon::Information, "Invalid Name");
        cancel = true;
        return;
    }
    try {
        const tree::NodeRef root = node.Root();
        const std::string key = node.Key();
        if (key == root->Key()) {
            RenameProject(node, newText, cancel);
            return;
        }
        const std::string projectName = root->Text();
        if (key.ends_with("~" + projectName + "~")) {
            RenameComponent(node, projectName, newText, cancel);
        } else if (key.starts_with(kFolderKeyPrefix) && key.ends_with("~" + projectName)) {
            RenameFolder(node, projectName, newText);
        } else {
            cancel = true;
        }
    } catch (const std::exception&) {
        cancel = true;
    }
}

// The environment renames the project; the full reload shows it under the new name.
void ProjectExplorer::RenameProject(tree::Node& node, std::string_view newText, bool& cancel) {
    const env::VBProjectRef project = FindProject(KeyField(node.Key(), 1));
    if (NodeExists(ProjectKey(newText))) {
        ui_.MsgBox("You already have a project with this name.", MsgBoxIcon::Exclamation,
                   "Invalid Name");
        cancel = true;
        return;
    }
    project->SetName(newText);
    RefreshProjects();
}

// The environment renames the component and its rename event moves the node to its new key.
void ProjectExplorer::RenameComponent(tree::Node& node, std::string_view projectName,
                                      std::string_view newText, bool& cancel) {
    if (NodeExists(ComponentKey(newText, projectName))) {
        ui_.MsgBox("You already have an object with this name.", MsgBoxIcon::Exclamation,
                   "Invalid Name");
        cancel = true;
        return;
    }
    const env::VBProjectRef project = FindProject(projectName);
    const std::string oldName(KeyField(node.Key(), 0));
    project->VBComponents()->Item(oldName)->SetName(newText);
}

// The components of the folder take the new name, which for a fixed group moves every component
// of that kind into a custom folder of the new name.
void ProjectExplorer::RenameFolder(tree::Node& node, std::string_view projectName,
                                   std::string_view newText) {
    const env::VBProjectRef project = FindProject(projectName);
    const std::string oldName(KeyField(node.Key(), 1));
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
    const std::string projectKey = node.Root()->Key();
    RefreshProjects();
    if (NodeExists(projectKey)) Nodes().Item(projectKey)->SetExpanded(true);
    const std::string newKey = FolderKey(newText, projectName);
    if (NodeExists(newKey)) Nodes().Item(newKey)->SetExpanded(wasExpanded);
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

void ProjectExplorer::DropComponent(std::string_view draggedKey, tree::Node& target) {
    try {
        const std::string targetKey = target.Key();
        if (draggedKey.empty() || !targetKey.starts_with(kFolderKeyPrefix)) return;
        const std::string key(draggedKey);
        if (!NodeExists(key)) return;
        const tree::NodeRef dragged = Nodes().Item(key);
        const tree::NodeRef oldFolder = dragged->Parent();
        if (oldFolder && oldFolder->Key() == targetKey) return;
        const env::VBComponentRef component = FindComponent(key);
        if (!component) return;
        try {
            component->ReadProperty(kFolderProperty);
        } catch (const VbError& error) {
            if (error.Number == env::enverr::kNotSupported) {
                ui_.MsgBox(
                    "This component cannot be moved as it does not support extended "
                    "properties.",
                    MsgBoxIcon::Information, "Cannot Move File");
                return;
            }
        }
        const std::string folder(KeyField(targetKey, 1));
        SetComponentFolder(*component, folder);
        if (text::ToLower(GetComponentFolder(*component)) != text::ToLower(folder)) return;
        const std::string projectName(KeyField(key, 1));
        RemoveNodeAndEmptyFolder(key);
        AddComponentNode(KeyField(key, 0), folder, projectName);
    } catch (const std::exception&) {
        // The tree stays as it was.
    }
}

void ProjectExplorer::DropFiles(const std::vector<std::string>& files, tree::Node& target) {
    try {
        const std::string targetKey = target.Key();
        const bool onFolder = targetKey.starts_with(kFolderKeyPrefix);
        if (!onFolder && !targetKey.starts_with(kProjectKeyPrefix)) return;
        const env::VBProjectRef project = FindProject(KeyField(targetKey, onFolder ? 2 : 1));
        if (!project) return;
        const std::string folder(onFolder ? KeyField(targetKey, 1) : std::string_view());
        const std::string customFolder = IsFixedGroupName(folder) ? std::string() : folder;
        for (const std::string& file : files) {
            if (const auto componentFile = ComponentFileFor(file)) {
                AddDroppedFile(*project, *componentFile, customFolder);
            }
        }
    } catch (const std::exception&) {
        // Files added so far stay added.
    }
}

void ProjectExplorer::AddDroppedFile(env::VBProject& project, const std::string& file,
                                     const std::string& customFolder) {
    env::VBComponentRef added;
    try {
        added = project.VBComponents()->AddFile(file);
    } catch (const VbError& error) {
        if (error.Number == env::enverr::kFileAlreadyInProject) {
            ui_.MsgBox(file + " is already part of " + project.Name(), MsgBoxIcon::Information,
                       "Existing File");
        } else {
            ui_.MsgBox(error.Description, MsgBoxIcon::Critical, "Cannot Add File");
        }
        return;
    } catch (const std::exception& error) {
        ui_.MsgBox(error.what(), MsgBoxIcon::Critical, "Cannot Add File");
        return;
    }
    if (!added || customFolder.empty()) return;
    SetComponentFolder(*added, customFolder);
    if (text::ToLower(GetComponentFolder(*added)) != text::ToLower(customFolder)) return;
    // The environment's ItemAdded may have shown it in its fixed group already.
    const std::string name = ComponentDisplayName(*added);
    RemoveNodeAndEmptyFolder(ComponentKey(name, project.Name()));
    AddComponentNode(name, customFolder, project.Name());
}

}  // namespace arbolet::explorer
