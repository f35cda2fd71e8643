// The code view: a component's logic-flow tree shown below its node while the node is expanded,
// built afresh from the current code at each expansion and dropped when the node collapses.
#include <exception>
#include <vector>

#include "analysis/code_tree.h"
#include "analysis/colours.h"
#include "base/utf8.h"
#include "explorer/project_explorer.h"

namespace arbolet::explorer {
namespace {

constexpr std::string_view kTooManyLines =
    "This component contains too many lines to display.\r\n"
    "Try closing some components in the tree first.";

}  // namespace

env::VBProjectRef ProjectExplorer::FindProject(std::string_view projectName) const {
    if (!vbe_) return nullptr;
    return vbe_->VBProjects()->Item(projectName);
}

// The component a component key stands for: by the display name the key was made from.
env::VBComponentRef ProjectExplorer::FindComponent(std::string_view componentKey) const {
    const KeyNames names = ReadKey(tree::NodeKind::Component, componentKey);
    const env::VBProjectRef project = FindProject(names.project);
    const auto components = project ? project->VBComponents() : nullptr;
    if (!components) return nullptr;
    const std::string& name = names.component;
    const std::int32_t count = components->Count();
    for (std::int32_t i = 1; i <= count; ++i) {
        env::VBComponentRef component = components->Item(i);
        if (ComponentDisplayName(*component) == name) return component;
    }
    return nullptr;
}

// The whole code in one call; a component without code shows an empty tree.
std::string ProjectExplorer::CodeOf(std::string_view componentKey) const {
    try {
        const env::VBComponentRef component = FindComponent(componentKey);
        const auto module = component ? component->CodeModule() : nullptr;
        return module ? module->Lines(1, 9999999) : std::string();
    } catch (const std::exception&) {
        return {};
    }
}

Outcome ProjectExplorer::ExpandNode(tree::Node& node) {
    node.SetExpanded(true);
    return HandleExpand(node);
}

Outcome ProjectExplorer::CollapseNode(tree::Node& node) {
    node.SetExpanded(false);
    return HandleCollapse(node);
}

// A code node opens and closes as the control does it, keeping its children; the placeholder
// never opens.
Outcome ProjectExplorer::HandleExpand(tree::Node& node) {
    try {
        if (node.Kind() != tree::NodeKind::Component) return Outcome::Done();
        const std::string key = node.Key();
        Nodes().RemoveChildren(node);
        BuildCodeTree(key, CodeOf(key));
        if (!d_components.contains(key)) return Outcome::Refused(kTooManyLines);
        return Outcome::Done();
    } catch (const std::exception& error) {
        // The tree keeps what it has; the next expansion tries again.
        return Outcome::Failed(error.what());
    }
}

// Closes the other open code trees when the new one would not fit; false when it still does not.
bool ProjectExplorer::MakeRoomFor(std::int32_t lineCount, const std::string& expandingKey) {
    const auto fits = [&](std::int32_t limit) {
        return static_cast<std::int64_t>(Nodes().Count()) + lineCount <= limit;
    };
    if (fits(kNodeLimit)) return true;
    std::vector<std::string> open;
    for (const auto& [key, state] : d_components) {
        if (key != expandingKey) open.push_back(key);
    }
    for (const std::string& key : open) {
        try {
            if (!NodeExists(key)) continue;
            const tree::NodeRef other = Nodes().Item(key);
            if (other->Expanded()) CollapseNode(*other);
        } catch (const std::exception&) {
            // A node that cannot be closed keeps its code tree.
        }
    }
    return fits(kNodeLimitAfterClosing);
}

void ProjectExplorer::BuildCodeTree(std::string_view componentKey, std::string_view codeText) {
    const analysis::DisplayOptions options = displayOptions_.ReadDisplayOptions();
    const std::string key(componentKey);
    if (!NodeExists(key)) return;
    const analysis::CodeTree code = analysis::BuildCodeTree(codeText, options);
    if (!MakeRoomFor(code.lineCount, key)) {
        ui_.MsgBox(kTooManyLines, MsgBoxIcon::Information, "Too Many Lines");
        const tree::NodeRef componentNode = Nodes().Item(key);
        ShowPlaceholder(*componentNode);
        componentNode->SetExpanded(false);
        d_components.erase(key);
        return;
    }
    d_components[key] = CodeTreeState{code.lineCount};
    const tree::NodeRef componentNode = Nodes().Item(key);
    ShowLines(key, *code.root, componentNode);
    if (CodeShown) CodeShown(*componentNode, codeText);
}

// Depth first without recursion, so that deeply nested code cannot exhaust the stack. A line
// whose node cannot be added (a key already in use) is left out with everything below it: its
// children must not land under some other node, nor its colour on one.
void ProjectExplorer::ShowLines(std::string_view componentKey, const analysis::clsLine& parentLine,
                                const tree::NodeRef& parentNode) {
    std::vector<tree::NodeRef> parents{parentNode};
    analysis::WalkTree(
        parentLine,
        [&](const analysis::clsLine& line, int depth) {
            parents.resize(static_cast<std::size_t>(depth));
            const tree::NodeRef& parent = parents.back();
            tree::NodeRef node;
            if (parent) {
                try {
                    node = AddCodeNode(componentKey, line, *parent);
                } catch (const std::exception&) {
                    node = nullptr;
                }
            }
            parents.push_back(std::move(node));
        },
        [](const analysis::clsLine&, int) {});
}

tree::NodeRef ProjectExplorer::AddCodeNode(std::string_view componentKey,
                                           const analysis::clsLine& line, tree::Node& parent) {
    const std::string_view content = line.LineContent.view();
    const bool shortened = text::HasMoreCharsThan(content, kCodeTextLength);
    std::string caption(shortened ? text::LeftChars(content, kCodeTextLength - 3) : content);
    if (shortened) caption += "...";
    tree::NodeRef node = Nodes().Add(&parent, tree::Relationship::Child,
                                     CodeNodeKey(componentKey, line.LineID.str()), caption,
                                     tree::NodeKind::CodeLine);
    if (shortened) node->SetTag(text::LeftChars(content, kCodeTagLength));
    node->SetForeColor(line.LineColour);
    if (analysis::colour::IsError(line.LineColour)) node->EnsureVisible();
    return node;
}

void ProjectExplorer::ShowPlaceholder(tree::Node& componentNode) {
    const std::string placeholderKey = PlaceholderKey(componentNode.Key());
    if (NodeExists(placeholderKey)) return;
    Nodes().Add(&componentNode, tree::Relationship::Child, placeholderKey, kPlaceholderText,
                tree::NodeKind::Placeholder);
}

// The code tree goes in one step, and the placeholder comes back for the next expansion.
Outcome ProjectExplorer::HandleCollapse(tree::Node& node) {
    try {
        switch (node.Kind()) {
            case tree::NodeKind::Folder:
                for (tree::NodeRef child = node.Child(); child; child = child->Next()) {
                    if (child->Expanded()) child->SetExpanded(false);
                }
                break;
            case tree::NodeKind::Component:
                Nodes().RemoveChildren(node);
                d_components.erase(node.Key());
                ShowPlaceholder(node);
                break;
            default:
                break;
        }
        return Outcome::Done();
    } catch (const std::exception& error) {
        // Whatever could not be put back returns at the next reload.
        return Outcome::Failed(error.what());
    }
}

}  // namespace arbolet::explorer
