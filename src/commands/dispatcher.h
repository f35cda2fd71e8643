// The command dispatcher: runs the command of a chosen menu item by its key, against the node
// the menu was opened on, through the environment's own commands where it has them.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "commands/front_end.h"
#include "explorer/outcome.h"
#include "explorer/project_explorer.h"
#include "popupmenu/menu_items.h"

namespace arbolet::commands {

class Dispatcher {
  public:
    Dispatcher(std::shared_ptr<env::VBE> vbe, tree::TreeView& treeView,
               explorer::ProjectExplorer& explorer, explorer::UiServices& ui, FrontEnd& frontEnd);

    // The popup menu's click: the item's key and item data; the menu's tag names the node the
    // menu was opened on, for items without node index.
    explorer::Outcome ItemClicked(const popupmenu::MenuItems& menu, std::int32_t index);
    // Runs a key: compared lower-cased with the known commands, then as "Goto:" with its case,
    // else "No such item: " and the key. `nodeIndex` is the tree node's index (0: none), else
    // `nodeKey` names the node.
    explorer::Outcome Run(std::string_view key, std::int32_t nodeIndex,
                          std::string_view nodeKey = {});
    // The cmdCode and cmdForm buttons: the view command for the selected node.
    explorer::Outcome ViewSelected(bool code);

  private:
    tree::NodeRef NodeFor(std::int32_t nodeIndex, std::string_view nodeKey) const;
    explorer::Outcome Save(const tree::Node* node);
    explorer::Outcome Add(const tree::Node* node, const char* control);
    explorer::Outcome View(const tree::Node* node, bool code);
    explorer::Outcome Properties(const tree::Node* node);
    explorer::Outcome Goto(const std::string& codeKey);
    env::VBProjectRef ActivateProjectOf(const tree::Node* node);

    std::shared_ptr<env::VBE> vbe_;
    tree::TreeView& treeView_;
    explorer::ProjectExplorer& explorer_;
    explorer::UiServices& ui_;
    FrontEnd& frontEnd_;
};

}  // namespace arbolet::commands
