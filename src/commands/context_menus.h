// The tree's context menus, built into the popup menu's item model: one menu per node kind, the
// background menu, and the "&Add" sub-menu. Items that stand for the environment's own commands
// take their enabled state from its menu controls at the moment the menu opens.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "environment/vbide.h"
#include "explorer/project_explorer.h"
#include "popupmenu/menu_items.h"
#include "treemodel/tree_view.h"

namespace arbolet::commands {

// The menu item keys the dispatcher knows.
namespace keys {
inline constexpr const char* kSetStartup = "ProjectSetStartup";
inline constexpr const char* kSave = "ProjectSave";
inline constexpr const char* kAdd = "ProjectAdd";
inline constexpr const char* kHide = "Hide";
inline constexpr const char* kObject = "Object";
inline constexpr const char* kCode = "Code";
inline constexpr const char* kRemove = "Remove";
inline constexpr const char* kAddFolder = "AddFolder";
inline constexpr const char* kShowProperties = "ShowProperties";
inline constexpr const char* kShowAbout = "ShowAbout";
inline constexpr const char* kShowHelp = "ShowHelp";
}  // namespace keys

// Mouse buttons as the tree's mouse events number them.
enum class MouseButton { Left = 1, Right = 2, Middle = 4 };

// The enabled state of the environment's control `item` in the menu `menu` of the command bar
// "Menu Bar"; nullopt when the environment has no such control (or no command bars).
std::optional<bool> EnvironmentControlEnabled(const env::VBE& vbe, const std::string& menu,
                                              const std::string& item);

class ContextMenus {
  public:
    // The environment may be nullptr (not connected): then no menu is shown.
    ContextMenus(popupmenu::MenuItems& menu, std::shared_ptr<env::VBE> vbe, tree::Nodes& nodes,
                 explorer::ProjectExplorer& explorer);

    // The tree's mouse-up: builds the menu for the node under the mouse (nullptr: empty tree
    // space, the active project's menu). False when no menu is to be shown: not the right
    // button, no project open, or nothing could be built.
    bool BuildTreeMenu(MouseButton button, const tree::Node* hit);
    // The document's mouse-up outside the tree; false for any button but the right one.
    bool BuildBackgroundMenu(MouseButton button);

    // The builders; each clears the menu first. The menu's tag keeps the key of the node the
    // menu was opened on, for the commands whose items carry no node index.
    void ProjectMenu(const tree::Node& node);
    void TypeGroupMenu(const tree::Node& node);
    void ComponentMenu(const tree::Node& node);
    void CodeLineMenu(const tree::Node& node);
    // Appends the "&Add" sub-menu under the item keyed ProjectAdd.
    void FillAddMenu(std::int32_t nodeIndex);

  private:
    // The state of the environment's control, or the last state read when the control is
    // missing (the environment's menus can be customised away).
    bool Enabled(const std::string& menu, const std::string& item);
    void ComponentItems(const tree::Node& node, const std::string& componentName);

    popupmenu::MenuItems& menu_;
    std::shared_ptr<env::VBE> vbe_;
    tree::Nodes& nodes_;
    explorer::ProjectExplorer& explorer_;
    bool lastEnabled_ = false;
};

}  // namespace arbolet::commands
