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

constexpr std::string_view kFolderKeyPrefix = "Type~";
constexpr std::string_view kTooManyLines =
    "This component contains too many lines to display.\r\n"
    "Try closing some components in the tree first.";

// Component keys end with "~"; code node keys end with their line's identifier and the
// placeholder never opens. A code node opens and closes as the control does it, keeping its
// children.
bool IsComponentKey(std::string_view key) {
    return !key.starts_with(kFolderKeyPrefix) && !key.starts_with(kProjectKeyPrefix) &&
           key.ends_with('~') && !key.starts_with("Code - ");
}

std::string CodeNodeKey(std::string_view componentKey, const analysis::clsLine& line) {
    std::string key = "S";
    key.append(componentKey).append("@").append(line.LineID.str());
    return key;
}

}  // namespace

env::VBProjectRef ProjectExplorer::FindProject(std::string_view projectName) const {
    if (!vbe_) return nullptr;
    return vbe_->VBProjects()->Item(projectName);
}

// The component a component key stands for: by the display name the key was made from.
env::VBComponentRef ProjectExplorer::FindComponent(std::string_view componentKey) const {
    const env::VBProjectRef project = FindProject(KeyField(componentKey, 1));
    const auto components = project ? project->VBComponents() : nullptr;
    if (!components) return nullptr;
    const std::string_view name = KeyField(componentKey, 0);
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

void ProjectExplorer::ExpandNode(tree::Node& node) {
    node.SetExpanded(true);
    HandleExpand(node);
}

tree::NodeRef ProjectExplorer::CollapseNode(tree::Node& node) {
    const std::string key = node.Key();
    node.SetExpanded(false);
    HandleCollapse(node);
    return NodeExists(key) ? Nodes().Item(key) : nullptr;
}

void ProjectExplorer::HandleExpand(tree::Node& node) {
    try {
        const std::string key = node.Key();
        if (!IsComponentKey(key)) return;
        while (node.Children() > 0)
            Nodes().Remove(*node.Child());
        BuildCodeTree(key, CodeOf(key));
    } catch (const std::exception&) {
        // The tree keeps what it has; the next expansion tries again.
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
        const std::string placeholderKey = PlaceholderKey(key);
        if (!NodeExists(placeholderKey)) {
            Nodes().Add(componentNode.get(), tree::Relationship::Child, placeholderKey,
                        kPlaceholderText);
        }
        componentNode->SetExpanded(false);
        d_components.erase(key);
        return;
    }
    d_components[key] = CodeTreeState{code.lineCount};
    ShowLines(key, *code.root, Nodes().Item(key));
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
    tree::NodeRef node =
        Nodes().Add(&parent, tree::Relationship::Child, CodeNodeKey(componentKey, line), caption);
    if (shortened) node->SetTag(text::LeftChars(content, kCodeTagLength));
    node->SetForeColor(line.LineColour);
    if (analysis::colour::IsError(line.LineColour)) node->EnsureVisible();
    return node;
}

// A component node goes and comes back at the same place with only its placeholder, which drops
// its code tree in one step.
void ProjectExplorer::HandleCollapse(tree::Node& node) {
    try {
        const tree::NodeRef parent = node.Parent();
        if (!parent) return;
        const std::string key = node.Key();
        if (!key.starts_with(kFolderKeyPrefix) && !IsComponentKey(key)) return;
        if (key.starts_with(kFolderKeyPrefix)) {
            for (tree::NodeRef child = node.Child(); child; child = child->Next()) {
                if (child->Expanded()) child->SetExpanded(false);
            }
            return;
        }
        const std::string caption = node.Text();
        const tree::NodeRef previous = node.Previous();
        const tree::NodeRef next = node.Next();
        Nodes().Remove(node);
        d_components.erase(key);
        if (NodeExists(key)) return;
        tree::NodeRef again = previous ? Nodes().Add(previous.get(), tree::Relationship::Next, key,
                                                     caption, kComponentImage, kComponentImage)
                              : next   ? Nodes().Add(next.get(), tree::Relationship::Previous, key,
                                                     caption, kComponentImage, kComponentImage)
                                       : Nodes().Add(parent.get(), tree::Relationship::Child, key,
                                                     caption, kComponentImage, kComponentImage);
        const std::string placeholderKey = PlaceholderKey(key);
        if (!NodeExists(placeholderKey)) {
            Nodes().Add(again.get(), tree::Relationship::Child, placeholderKey, kPlaceholderText);
        }
    } catch (const std::exception&) {
        // Whatever could not be put back returns at the next reload.
    }
}

}  // namespace arbolet::explorer
