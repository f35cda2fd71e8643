// The node of a code line, the census of components with block errors, and stepping from one
// red node to the next.
#include "explorer/code_navigation.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <vector>

#include "analysis/colours.h"
#include "analysis/vb6_blocks.h"
#include "base/utf8.h"
#include "explorer/tree_search.h"

namespace arbolet::explorer {
namespace {

// The nodes below `top` in tree order, without `top` itself; iterative, as code nests deeply.
std::vector<tree::NodeRef> NodesBelow(const tree::Node& top) {
    std::vector<tree::NodeRef> order;
    std::vector<tree::NodeRef> pending;
    const auto pushChildren = [&pending](const tree::Node& node) {
        const std::size_t mark = pending.size();
        for (tree::NodeRef child = node.Child(); child; child = child->Next())
            pending.push_back(child);
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(mark), pending.end());
    };
    pushChildren(top);
    while (!pending.empty()) {
        tree::NodeRef node = std::move(pending.back());
        pending.pop_back();
        pushChildren(*node);
        order.push_back(std::move(node));
    }
    return order;
}

bool IsRed(const tree::Node& node) {
    return node.Kind() == tree::NodeKind::CodeLine && analysis::colour::IsError(node.ForeColor());
}

std::int64_t LastLineBelow(const tree::Node& node) {
    std::int64_t last = CodeLineNumber(node.Key());
    for (const tree::NodeRef& below : NodesBelow(node)) {
        if (below->Kind() == tree::NodeKind::CodeLine)
            last = std::max(last, CodeLineNumber(below->Key()));
    }
    return last;
}

tree::NodeRef ComponentAbove(const tree::Node& node) {
    for (tree::NodeRef up = node.Kind() == tree::NodeKind::Component ? nullptr : node.Parent(); up;
         up = up->Parent()) {
        if (up->Kind() == tree::NodeKind::Component) return up;
    }
    return nullptr;
}

tree::NodeRef FindComponentNode(const tree::Nodes& nodes, const CodeLocation& location) {
    if (!location.project.empty()) {
        const std::string key = ComponentKey(location.component, location.project);
        return nodes.Exists(key) ? nodes.Item(key) : nullptr;
    }
    const std::string wanted = text::ToLower(location.component);
    for (const tree::NodeRef& node : NodesInTreeOrder(nodes)) {
        if (node->Kind() == tree::NodeKind::Component && text::ToLower(node->Text()) == wanted)
            return node;
    }
    return nullptr;
}

// Looks for red nodes in one component, opening it when the census flags it and it is closed.
class ErrorSearch {
  public:
    ErrorSearch(ProjectExplorer& explorer, const BlockErrorCensus& census, bool forward)
        : explorer_(explorer), census_(census), forward_(forward) {}

    tree::NodeRef In(const tree::NodeRef& component) {
        if (!component->Expanded()) {
            if (!census_.Flagged(component->Key())) return nullptr;
            explorer_.ExpandNode(*component);
            tree::NodeRef found = Pick(NodesBelow(*component), 0, -1);
            if (!found) explorer_.CollapseNode(*component);
            return found;
        }
        return Pick(NodesBelow(*component), 0, -1);
    }

    // The first (forward) or last red node among `below` from `begin` to `end` (-1: the end).
    tree::NodeRef Pick(const std::vector<tree::NodeRef>& below, std::ptrdiff_t begin,
                       std::ptrdiff_t end) const {
        if (end < 0) end = static_cast<std::ptrdiff_t>(below.size());
        for (std::ptrdiff_t i = 0; i < end - begin; ++i) {
            const tree::NodeRef& node =
                below[static_cast<std::size_t>(forward_ ? begin + i : end - 1 - i)];
            if (IsRed(*node)) return node;
        }
        return nullptr;
    }

  private:
    ProjectExplorer& explorer_;
    const BlockErrorCensus& census_;
    bool forward_;
};

}  // namespace

tree::NodeRef InnermostCodeNode(const tree::Node& component, std::int64_t line) {
    tree::NodeRef result;
    const tree::Node* current = &component;
    while (true) {
        tree::NodeRef best;
        std::int64_t bestLine = -1;
        for (tree::NodeRef child = current->Child(); child; child = child->Next()) {
            if (child->Kind() != tree::NodeKind::CodeLine) continue;
            const std::int64_t childLine = CodeLineNumber(child->Key());
            if (childLine <= line && childLine > bestLine) {
                best = child;
                bestLine = childLine;
            }
        }
        if (!best || LastLineBelow(*best) < line) return result;
        result = best;
        current = result.get();
    }
}

tree::NodeRef LocateLine(ProjectExplorer& explorer, tree::Nodes& nodes,
                         const CodeLocation& location) {
    const tree::NodeRef component = FindComponentNode(nodes, location);
    if (!component) return nullptr;
    if (!component->Expanded()) explorer.ExpandNode(*component);
    const tree::NodeRef node = InnermostCodeNode(*component, location.line - 1);
    return node ? node : component;
}

void BlockErrorCensus::Recount(const ProjectExplorer& explorer, const tree::Nodes& nodes) {
    flagged_.clear();
    for (const tree::NodeRef& node : NodesInTreeOrder(nodes)) {
        if (node->Kind() == tree::NodeKind::Component) Recheck(explorer, node->Key(), false);
    }
}

void BlockErrorCensus::Recheck(const ProjectExplorer& explorer, const std::string& componentKey,
                               bool gone) {
    flagged_.erase(componentKey);
    if (gone) return;
    try {
        if (!analysis::vb6::CheckBlocks(explorer.ComponentCode(componentKey)).empty())
            flagged_.insert(componentKey);
    } catch (const std::exception&) {
        // Code that cannot be read has no errors to step to.
    }
}

std::string CensusText(std::int32_t components) {
    if (components <= 0) return {};
    return std::to_string(components) +
           (components == 1 ? " component with block errors" : " components with block errors");
}

tree::NodeRef StepToError(ProjectExplorer& explorer, tree::Nodes& nodes,
                          const BlockErrorCensus& census, const tree::Node* from, bool forward) {
    const std::vector<tree::NodeRef> order = NodesInTreeOrder(nodes);
    std::vector<tree::NodeRef> components;
    // Components before `from` in tree order; `from` counts as before its own descendants.
    std::size_t before = forward ? 0 : SIZE_MAX;
    const tree::NodeRef owner = from != nullptr ? ComponentAbove(*from) : nullptr;
    for (const tree::NodeRef& node : order) {
        if (owner ? node == owner : node.get() == from) before = components.size();
        if (node->Kind() == tree::NodeKind::Component) components.push_back(node);
    }
    if (before == SIZE_MAX) before = components.size();
    const std::size_t count = components.size();
    ErrorSearch search(explorer, census, forward);

    // Inside a component's code, its red nodes on the far side of `from` come first, and those
    // on the near side last, after going round every other component.
    std::vector<tree::NodeRef> ownBelow;
    std::ptrdiff_t fromAt = 0;
    if (owner) {
        ownBelow = NodesBelow(*owner);
        for (std::size_t i = 0; i < ownBelow.size(); ++i) {
            if (ownBelow[i].get() == from) fromAt = static_cast<std::ptrdiff_t>(i);
        }
        const auto found =
            forward ? search.Pick(ownBelow, fromAt + 1, -1) : search.Pick(ownBelow, 0, fromAt);
        if (found) return found;
    }
    const std::size_t skip = owner ? 1 : 0;
    for (std::size_t step = 0; step + skip < count; ++step) {
        const std::size_t at =
            forward ? (before + skip + step) % count : (before + count - 1 - step) % count;
        if (const auto found = search.In(components[at])) return found;
    }
    if (owner) {
        return forward ? search.Pick(ownBelow, 0, fromAt + 1) : search.Pick(ownBelow, fromAt, -1);
    }
    return nullptr;
}

}  // namespace arbolet::explorer
