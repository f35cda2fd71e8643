// The project edits that front ends run by name rather than on a node the user picked: adding,
// removing and renaming custom folders, moving a component into a folder and renaming a
// component, with the refusals (and their messages) every front end shares. The explorer does
// the work; the caller saves the environment afterwards.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "explorer/outcome.h"
#include "explorer/project_explorer.h"
#include "treemodel/tree_view.h"

namespace arbolet::explorer {

// What the edits work on: the explorer with its tree built, its tree and its dialogs.
struct EditContext {
    ProjectExplorer& explorer;
    tree::TreeView& view;
    UiServices& ui;
};

// The folders the project lists and those its components name: lower-cased name to the
// spelling first found.
std::map<std::string, std::string> CustomFolders(const env::VBProject& project);

// Whether the tree shows a folder of that name (ignoring case): a custom folder or a fixed group.
bool IsShownFolder(EditContext& context, const env::VBProject& project, std::string_view name);

// The refusal shown for a folder name that cannot be stored, or Done when the name is fine.
Outcome CheckFolderName(EditContext& context, std::string_view name);

Outcome AddFolderNamed(EditContext& context, env::VBProject& project, std::string_view name);
// The folder is taken as spelt in the project, whatever the case given; a fixed group cannot
// be removed.
Outcome RemoveFolderNamed(EditContext& context, env::VBProject& project, std::string_view name);
// Moves a component into a folder ("" for the fixed group of its kind). A folder that does not
// exist is made only with `create`; without, it is refused with NoSuchFolderMessage.
Outcome MoveComponentNamed(EditContext& context, env::VBProject& project,
                           std::string_view component, std::string_view folder, bool create);
std::string NoSuchFolderMessage(const env::VBProject& project, std::string_view folder);
// Renames a folder as editing its caption does; `merged` tells whether a folder of the new name
// existed already and took the components.
Outcome RenameFolderNamed(EditContext& context, env::VBProject& project, std::string_view oldName,
                          std::string_view newName, bool& merged);
// Renames a component as editing its caption does; a refusal explains why the name was refused.
Outcome RenameComponentNamed(EditContext& context, env::VBProject& project,
                             std::string_view component, std::string_view newName);

// "P has no component named 'C'".
std::string NoSuchComponentMessage(const env::VBProject& project, std::string_view component);
// The component's node in the tree, or nullptr when the project has no such component.
tree::NodeRef ComponentNodeNamed(EditContext& context, const env::VBProject& project,
                                 std::string_view component);

}  // namespace arbolet::explorer
