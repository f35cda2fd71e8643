// Building the context menus (see context_menus.h).
#include "commands/context_menus.h"

#include <exception>

#include "explorer/node_keys.h"

namespace arbolet::commands {
namespace {

constexpr const char* kMenuBar = "Menu Bar";

struct AddItem {
    const char* caption;
    const char* key;
    const char* control;
};

// There is no "Add Module" item, although the dispatcher runs `addmodule`.
constexpr AddItem kAddItems[] = {
    {"&Form", "AddForm", "Add Form"},
    {"MD&I Form", "AddMDIForm", "Add MDI Form"},
    {"&Class Module", "AddClass", "Add Class Module"},
    {"&User Control", "AddUserControl", "Add User Control"},
    {"&Property Page", "AddPropertyPage", "Add Property Page"},
    {"User &Document", "AddUserDocument", "Add User Document"},
};

void Separator(popupmenu::MenuItems& menu) {
    menu.AddItem("-");
}

void Item(popupmenu::MenuItems& menu, const std::string& caption, const char* key,
          std::int32_t itemData = 0, bool enabled = true) {
    menu.AddItem(caption, {}, itemData, 0, -1, false, enabled, key);
}

}  // namespace

std::optional<bool> EnvironmentControlEnabled(const env::VBE& vbe, const std::string& menu,
                                              const std::string& item) {
    try {
        const auto bars = vbe.CommandBars();
        if (!bars) return std::nullopt;
        const auto popup = bars->Item(kMenuBar)->Controls()->Item(menu);
        const auto controls = popup ? popup->Controls() : nullptr;
        if (!controls) return std::nullopt;
        return controls->Item(item)->Enabled();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

ContextMenus::ContextMenus(popupmenu::MenuItems& menu, std::shared_ptr<env::VBE> vbe,
                           tree::Nodes& nodes, explorer::ProjectExplorer& explorer)
    : menu_(menu), vbe_(std::move(vbe)), nodes_(nodes), explorer_(explorer) {}

bool ContextMenus::Enabled(const std::string& menu, const std::string& item) {
    if (vbe_) {
        if (const auto enabled = EnvironmentControlEnabled(*vbe_, menu, item)) {
            lastEnabled_ = *enabled;
        }
    }
    return lastEnabled_;
}

bool ContextMenus::BuildTreeMenu(MouseButton button, const tree::Node* hit) {
    try {
        if (!vbe_ || button != MouseButton::Right) return false;
        if (vbe_->VBProjects()->Count() < 1) return false;
        menu_.Clear();
        std::int32_t nodeIndex = hit != nullptr ? hit->Index() : 0;
        if (hit == nullptr) {
            const auto active = vbe_->ActiveVBProject();
            const std::string key = explorer::ProjectKey(active ? active->Name() : std::string());
            if (!nodes_.Exists(key)) return false;
            const tree::NodeRef projectNode = nodes_.Item(key);
            nodeIndex = projectNode->Index();
            ProjectMenu(*projectNode);
        } else {
            // The environment's commands act on the active project, as after a click on the
            // node in its own project window.
            if (const auto project = explorer_.ProjectOfNode(*hit)) {
                vbe_->SetActiveVBProject(project);
            }
            switch (hit->Kind()) {
                case tree::NodeKind::Project:
                    ProjectMenu(*hit);
                    break;
                case tree::NodeKind::Folder:
                    TypeGroupMenu(*hit);
                    break;
                case tree::NodeKind::CodeLine:
                    CodeLineMenu(*hit);
                    break;
                case tree::NodeKind::Component:
                    ComponentMenu(*hit);
                    break;
                default:
                    // The placeholder and nodes of no kind have no menu of their own.
                    return false;
            }
        }
        FillAddMenu(nodeIndex);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

bool ContextMenus::BuildBackgroundMenu(MouseButton button) {
    if (button != MouseButton::Right) return false;
    menu_.Clear();
    Item(menu_, "&Properties", keys::kShowProperties);
    Separator(menu_);
    Item(menu_, "&About Arbolet", keys::kShowAbout);
    Separator(menu_);
    Item(menu_, "&Help", keys::kShowHelp);
    return true;
}

// A type group's menu is the project menu without the two start-up entries.
void ContextMenus::ProjectMenu(const tree::Node& node) {
    menu_.Clear();
    menu_.Tag(node.Key());
    const std::int32_t index = node.Index();
    if (node.Kind() == tree::NodeKind::Project) {
        Item(menu_, "Set As Start &Up", keys::kSetStartup, index);
        Separator(menu_);
    }
    Item(menu_, "Sa&ve Project", keys::kSave, index);
    Separator(menu_);
    Item(menu_, "&Add", keys::kAdd);
    Separator(menu_);
    Item(menu_, "&Hide", keys::kHide);
}

void ContextMenus::TypeGroupMenu(const tree::Node& node) {
    menu_.Clear();
    ProjectMenu(node);
}

// The environment's View commands act on its selected component, so the clicked component is
// selected before their states are read.
void ContextMenus::ComponentMenu(const tree::Node& node) {
    ComponentItems(node, explorer::ReadKey(node.Kind(), node.Key()).component);
}

void ContextMenus::ComponentItems(const tree::Node& node, const std::string& componentName) {
    menu_.Clear();
    menu_.Tag(node.Key());
    if (vbe_) {
        try {
            if (const auto component = explorer_.ComponentOfNode(node)) {
                vbe_->SetSelectedVBComponent(component);
            }
        } catch (const std::exception&) {
            // The states are read for whatever the environment has selected.
        }
    }
    const std::int32_t index = node.Index();
    Item(menu_, "View O&bject", keys::kObject, index, Enabled("View", "Object"));
    Item(menu_, "View C&ode", keys::kCode, index, Enabled("View", "Code"));
    Separator(menu_);
    Item(menu_, "&Add", keys::kAdd);
    Separator(menu_);
    Item(menu_, "&Remove " + componentName, keys::kRemove, index);
    Separator(menu_);
    Item(menu_, "&Hide", keys::kHide);
}

// The Goto item goes before the first separator, with a separator of its own before it. Its
// help text is the word ProjectAdd, as it always was; nothing reads it.
void ContextMenus::CodeLineMenu(const tree::Node& node) {
    const std::string key = node.Key();
    ComponentItems(node, explorer::ReadKey(node.Kind(), key).component);
    const std::int64_t line = explorer::CodeLineNumber(key) + 1;
    const std::int32_t separator = menu_.IndexForKey("");
    const std::int32_t gotoItem =
        menu_.InsertItem("&Goto Line " + std::to_string(line), separator, keys::kAdd, node.Index(),
                         -1, false, true, explorer::GotoItemKey(key));
    menu_.InsertItem("-", gotoItem);
}

void ContextMenus::FillAddMenu(std::int32_t nodeIndex) {
    const std::int32_t parent = menu_.IndexForKey(keys::kAdd);
    if (parent == 0) return;
    for (const AddItem& add : kAddItems) {
        menu_.AddItem(add.caption, {}, 0, parent, -1, false, Enabled("Project", add.control),
                      add.key);
    }
    menu_.AddItem("&New Folder", {}, nodeIndex, parent, -1, false, true, keys::kAddFolder);
}

}  // namespace arbolet::commands
