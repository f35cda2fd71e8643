// Running the menu commands (see dispatcher.h).
#include "commands/dispatcher.h"

#include <exception>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "commands/context_menus.h"
#include "explorer/node_keys.h"

namespace arbolet::commands {
namespace {

using explorer::Outcome;

constexpr const char* kMenuBar = "Menu Bar";

// The environment's add commands, by the dispatcher's lower-case keys.
struct AddCommand {
    std::string_view key;
    const char* control;
};
constexpr AddCommand kAddCommands[] = {
    {"addform", "Add Form"},
    {"addmdiform", "Add MDI Form"},
    {"addmodule", "Add Module"},
    {"addclass", "Add Class Module"},
    {"addusercontrol", "Add User Control"},
    {"addpropertypage", "Add Property Page"},
    {"adduserdocument", "Add User Document"},
};

env::CommandBarControlRef FindControl(const env::VBE& vbe, const std::string& menu,
                                      const std::string& item) {
    const auto bars = vbe.CommandBars();
    if (!bars) env::enverr::RaiseNotSupported("VBE.CommandBars");
    const auto popup = bars->Item(kMenuBar)->Controls()->Item(menu);
    const auto controls = popup->Controls();
    if (!controls) env::enverr::RaiseNotSupported("CommandBarControl.Controls");
    return controls->Item(item);
}

}  // namespace

Dispatcher::Dispatcher(std::shared_ptr<env::VBE> vbe, tree::TreeView& treeView,
                       explorer::ProjectExplorer& explorer, explorer::UiServices& ui,
                       FrontEnd& frontEnd)
    : vbe_(std::move(vbe)),
      treeView_(treeView),
      explorer_(explorer),
      ui_(ui),
      frontEnd_(frontEnd) {}

Outcome Dispatcher::ItemClicked(const popupmenu::MenuItems& menu, std::int32_t index) {
    try {
        return Run(menu.ItemKey(index), menu.ItemData(index), menu.Tag());
    } catch (const std::exception& error) {
        return Outcome::Failed(error.what());
    }
}

tree::NodeRef Dispatcher::NodeFor(std::int32_t nodeIndex, std::string_view nodeKey) const {
    tree::Nodes& nodes = treeView_.Nodes();
    if (nodeIndex > 0) return nodes.Item(nodeIndex);
    if (!nodeKey.empty() && nodes.Exists(nodeKey)) return nodes.Item(nodeKey);
    return nullptr;
}

// Environment errors inside a command end it; the front end shows nothing more.
Outcome Dispatcher::Run(std::string_view key, std::int32_t nodeIndex, std::string_view nodeKey) {
    const std::string command = text::ToLower(key);
    try {
        const tree::NodeRef nodeRef = NodeFor(nodeIndex, nodeKey);
        const tree::Node* node = nodeRef.get();
        const auto needNode = [&] { return Outcome::Failed("The menu was opened on no node"); };
        if (command == "projectsave") return Save(node);
        if (command == "projectsetstartup") {
            return node ? explorer_.SetStartUpProject(*node) : needNode();
        }
        if (command == "addfolder") return node ? explorer_.NewFolder(node->Key()) : needNode();
        for (const AddCommand& add : kAddCommands) {
            if (command == add.key) return Add(node, add.control);
        }
        if (command == "object") return View(node, false);
        if (command == "properties") return Properties(node);
        if (command == "code") return View(node, true);
        if (command == "remove") return node ? explorer_.RemoveComponent(*node) : needNode();
        if (command == "hide") {
            frontEnd_.Hide();
            return Outcome::Done();
        }
        if (command == "showabout") {
            frontEnd_.ShowAbout();
            return Outcome::Done();
        }
        if (command == "showhelp") {
            frontEnd_.ShowHelp();
            return Outcome::Done();
        }
        if (command == "showproperties") {
            frontEnd_.ShowProperties();
            return Outcome::Done();
        }
        if (const auto codeKey = explorer::CodeKeyOfGotoItem(key)) return Goto(*codeKey);
    } catch (const VbError& error) {
        return Outcome::Failed(error.Description);
    } catch (const std::exception& error) {
        return Outcome::Failed(error.what());
    }
    const std::string message = "No such item: " + std::string(key);
    ui_.MsgBox(message, explorer::MsgBoxIcon::None, {});
    return Outcome::Refused(message);
}

env::VBProjectRef Dispatcher::ActivateProjectOf(const tree::Node* node) {
    env::VBProjectRef project = node ? explorer_.ProjectOfNode(*node) : nullptr;
    if (!project && vbe_) project = vbe_->ActiveVBProject();
    if (!project) env::enverr::RaiseObjectNotSet("VBE.ActiveVBProject");
    vbe_->SetActiveVBProject(project);
    return project;
}

Outcome Dispatcher::Save(const tree::Node* node) {
    if (!vbe_) return Outcome::Failed("Not connected to the environment");
    ActivateProjectOf(node);
    FindControl(*vbe_, "File", "Save Project")->Execute();
    return Outcome::Done();
}

// The environment's own add command, with its dialog and rules; a disabled one does nothing.
Outcome Dispatcher::Add(const tree::Node* node, const char* control) {
    if (!vbe_) return Outcome::Failed("Not connected to the environment");
    const env::VBProjectRef project = ActivateProjectOf(node);
    const env::CommandBarControlRef add = FindControl(*vbe_, "Project", control);
    if (!add->Enabled()) {
        return Outcome::Refused("\"" + std::string(control) + "\" is not available in " +
                                project->Name());
    }
    add->DoDefaultAction();
    return Outcome::Done();
}

// Project and folder nodes have nothing to view; the designer only where the environment's own
// View Object is enabled for the component.
Outcome Dispatcher::View(const tree::Node* node, bool code) {
    const env::VBComponentRef component = node ? explorer_.ComponentOfNode(*node) : nullptr;
    if (!component) return Outcome::Refused({});
    if (vbe_) vbe_->SetSelectedVBComponent(component);
    if (code) {
        if (!component->CodeModule()) return Outcome::Refused({});
        frontEnd_.ShowCode(*component, 1);
        return Outcome::Done();
    }
    if (vbe_ && EnvironmentControlEnabled(*vbe_, "View", "Object") == false) {
        return Outcome::Refused({});
    }
    frontEnd_.ShowObject(*component);
    return Outcome::Done();
}

Outcome Dispatcher::Properties(const tree::Node* node) {
    const env::VBComponentRef component = node ? explorer_.ComponentOfNode(*node) : nullptr;
    if (component && frontEnd_.SelectForProperties(*component)) return Outcome::Done();
    const std::string message =
        "Unable to perform as cannot set SelectedVBProperty - Blame MS for this one";
    ui_.MsgBox(message, explorer::MsgBoxIcon::Information, {});
    return Outcome::Refused(message);
}

// A node that has gone since the menu opened is passed over without a word.
Outcome Dispatcher::Goto(const std::string& codeKey) {
    tree::Nodes& nodes = treeView_.Nodes();
    if (!nodes.Exists(codeKey)) return Outcome::Failed({});
    const env::VBComponentRef component = explorer_.ComponentOfNode(*nodes.Item(codeKey));
    if (!component) return Outcome::Failed({});
    if (vbe_) vbe_->SetSelectedVBComponent(component);
    frontEnd_.ShowCode(*component, explorer::CodeLineNumber(codeKey) + 1);
    return Outcome::Done();
}

Outcome Dispatcher::ViewSelected(bool code) {
    try {
        return View(treeView_.SelectedItem().get(), code);
    } catch (const std::exception& error) {
        return Outcome::Failed(error.what());
    }
}

}  // namespace arbolet::commands
