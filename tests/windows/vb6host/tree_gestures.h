// Scenario steps a person takes on the add-in's tree inside the IDE, with real input through
// the system's queue: a right click and a menu choice, a rename by editing a label, a drag onto
// a folder. Each step is checked by what the IDE's objects, the transcript and the tree show
// afterwards.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace arbolet::vb6host {

class HostContext;
class Report;

// Where the gestures happen: the IDE with the add-in's tool window shown.
struct TreeScene {
    HostContext& context;
    HWND main;  // the IDE's main window, brought to the front for the input
    HWND tree;  // the tree view inside the tool window
    Report& report;
};

// With `selected` selected in the IDE's own project window, right-clicks the component `name`
// in the tree: the node must become the tree's selection and the context menu open; a picture
// of the IDE with the menu is saved to `picture` when one is named. Then chooses "View C&ode"
// with its access key: the code window of `name` (not of `selected`) must be shown.
void RightClickViewCode(const TreeScene& scene, const std::wstring& name,
                        const std::wstring& selected, const std::filesystem::path& picture);

// Renames the component `name` to `newName` by pressing F2 on its node, typing and pressing
// Enter: the IDE must be told (put VBComponent.Name) and the tree show the new name. Then edits
// the new label without changing it: nothing may be put.
void RenameByLabelEdit(const TreeScene& scene, const std::wstring& name,
                       const std::wstring& newName);

// Drags the component `name` with the mouse onto the folder `folder`: the tree must show it
// there and the component record the folder (its QX-TypeName property).
void DragOntoFolder(const TreeScene& scene, const std::wstring& name, const std::wstring& folder);

}  // namespace arbolet::vb6host
