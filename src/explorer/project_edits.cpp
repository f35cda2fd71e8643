// Project edits by name (see project_edits.h).
#include "explorer/project_edits.h"

#include "base/utf8.h"
#include "base/vb_error.h"

namespace arbolet::explorer {
namespace {

tree::NodeRef ProjectNode(EditContext& context, const env::VBProject& project) {
    const std::string key = ProjectKey(project.Name());
    return context.view.Nodes().Exists(key) ? context.view.Nodes().Item(key) : nullptr;
}

}  // namespace

std::map<std::string, std::string> CustomFolders(const env::VBProject& project) {
    std::map<std::string, std::string> folders;
    const auto add = [&](std::string_view name) {
        if (!name.empty()) folders.emplace(text::ToLower(name), std::string(name));
    };
    const std::string list = ProjectExplorer::ReadFolderList(project);
    std::size_t start = 0;
    for (std::size_t end = list.find(';'); end != std::string::npos; end = list.find(';', start)) {
        add(text::Trim(std::string_view(list).substr(start, end - start)));
        start = end + 1;
    }
    add(text::Trim(std::string_view(list).substr(start)));
    const auto components = project.VBComponents();
    for (std::int32_t i = 1; components && i <= components->Count(); ++i) {
        try {
            add(components->Item(i)->ReadProperty(kFolderProperty));
        } catch (const VbError&) {
        }
    }
    return folders;
}

bool IsShownFolder(EditContext& context, const env::VBProject& project, std::string_view name) {
    const tree::NodeRef projectNode = ProjectNode(context, project);
    for (tree::NodeRef folder = projectNode ? projectNode->Child() : nullptr; folder;
         folder = folder->Next()) {
        if (text::ToLower(folder->Text()) == text::ToLower(name)) return true;
    }
    return false;
}

Outcome CheckFolderName(EditContext& context, std::string_view name) {
    if (IsValidFolderName(name)) return Outcome::Done();
    constexpr std::string_view kPrompt = "Not a valid folder name, please try again.";
    context.ui.MsgBox(kPrompt, MsgBoxIcon::Information, "Invalid Folder Name");
    return Outcome::Refused(kPrompt);
}

Outcome AddFolderNamed(EditContext& context, env::VBProject& project, std::string_view name) {
    return context.explorer.AddFolder(project, name);
}

Outcome RemoveFolderNamed(EditContext& context, env::VBProject& project, std::string_view name) {
    const auto folders = CustomFolders(project);
    const auto found = folders.find(text::ToLower(name));
    if (found == folders.end()) {
        return Outcome::Refused("'" + std::string(name) + "' is not a custom folder of " +
                                project.Name());
    }
    context.explorer.RemoveFolder(project, found->second);
    return Outcome::Done();
}

std::string NoSuchFolderMessage(const env::VBProject& project, std::string_view folder) {
    return project.Name() + " has no folder named '" + std::string(folder) + "'";
}

std::string NoSuchComponentMessage(const env::VBProject& project, std::string_view component) {
    return project.Name() + " has no component named '" + std::string(component) + "'";
}

Outcome MoveComponentNamed(EditContext& context, env::VBProject& project,
                           std::string_view componentName, std::string_view folder, bool create) {
    env::VBComponentRef component;
    try {
        component = project.VBComponents()->Item(componentName);
    } catch (const VbError&) {
    }
    if (!component) return Outcome::Refused(NoSuchComponentMessage(project, componentName));
    // An empty folder name takes the component back to the fixed group of its kind.
    if (!folder.empty()) {
        Outcome checked = CheckFolderName(context, folder);
        if (!checked.done()) return checked;
    }
    // A move to a folder that does not exist is most likely a typing mistake.
    const bool known = folder.empty() || IsFixedGroupName(folder) ||
                       CustomFolders(project).contains(text::ToLower(folder)) ||
                       IsShownFolder(context, project, folder);
    if (!create && !known) return Outcome::Refused(NoSuchFolderMessage(project, folder));
    return context.explorer.SetComponentFolder(*component, folder);
}

Outcome RenameFolderNamed(EditContext& context, env::VBProject& project, std::string_view oldName,
                          std::string_view newName, bool& merged) {
    merged = false;
    const tree::NodeRef projectNode = ProjectNode(context, project);
    tree::NodeRef folder = projectNode ? projectNode->Child() : nullptr;
    while (folder && text::ToLower(folder->Text()) != text::ToLower(oldName))
        folder = folder->Next();
    if (!folder) return Outcome::Refused(NoSuchFolderMessage(project, oldName));
    const auto existing = CustomFolders(project);
    const bool merges =
        text::ToLower(newName) != text::ToLower(oldName) &&
        (existing.contains(text::ToLower(newName)) || IsShownFolder(context, project, newName));
    Outcome outcome = context.explorer.AfterLabelEdit(*folder, newName);
    merged = outcome.done() && merges;
    return outcome;
}

tree::NodeRef ComponentNodeNamed(EditContext& context, const env::VBProject& project,
                                 std::string_view name) {
    try {
        const auto component = project.VBComponents()->Item(name);
        const std::string key = ComponentKey(ComponentDisplayName(*component), project.Name());
        if (context.view.Nodes().Exists(key)) return context.view.Nodes().Item(key);
    } catch (const VbError&) {
        // A name the project does not hold.
    }
    return nullptr;
}

Outcome RenameComponentNamed(EditContext& context, env::VBProject& project,
                             std::string_view componentName, std::string_view newName) {
    const tree::NodeRef node = ComponentNodeNamed(context, project, componentName);
    if (!node) return Outcome::Refused(NoSuchComponentMessage(project, componentName));
    Outcome outcome = context.explorer.AfterLabelEdit(*node, newName);
    if (outcome.done() || outcome.status() == Outcome::Status::Failed) return outcome;
    // The tree traps the environment's errors, so the reason for a refused name is asked of the
    // same rule the environment applies.
    const auto components = project.VBComponents();
    std::string why = "the name was refused";
    try {
        const env::VBComponentRef component = components->Item(componentName);
        env::CheckComponentName(*components, newName, component.get());
    } catch (const VbError& error) {
        why = error.Description;
    }
    return Outcome::Refused(project.Name() + " does not take '" + std::string(newName) +
                            "' as a component name: " + why);
}

}  // namespace arbolet::explorer
