// Find as you type: the query, the procedure names of a component, the tree cut down to the
// matches, and the snapshot that brings the tree back once the search is cleared.
#include "explorer/tree_search.h"

#include <algorithm>
#include <exception>
#include <set>

#include "analysis/code_tree.h"
#include "base/utf8.h"

namespace arbolet::explorer {
namespace {

bool IsNameByte(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code >= 0x80 || c == '_' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
           (c >= 'A' && c <= 'Z');
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

// The next word of a statement, moving `at` past it and the blanks after it.
std::string_view NextWord(std::string_view statement, std::size_t& at) {
    const std::size_t start = at;
    while (at < statement.size() && IsNameByte(statement[at]))
        ++at;
    const std::string_view word = statement.substr(start, at - start);
    while (at < statement.size() && IsBlank(statement[at]))
        ++at;
    return word;
}

bool Contains(const std::string& haystack, const std::string& needle) {
    return haystack.find(needle) != std::string::npos;
}

// The procedure names of code, one per declaration line; a declaration continued over several
// lines has its name on the first.
std::vector<std::string> LowerProcedureNames(std::string_view code) {
    std::vector<std::string> names;
    std::size_t start = 0;
    while (start < code.size()) {
        std::size_t end = code.find('\n', start);
        if (end == std::string_view::npos) end = code.size();
        if (const auto name = ProcedureNameOf(text::Trim(code.substr(start, end - start))))
            names.push_back(text::ToLower(*name));
        start = end + 1;
    }
    return names;
}

// Whether the node stays in a search's tree; removes from below it what does not. Only
// projects and folders are gone into, so the depth is that of the folders.
bool KeepMatches(ProjectExplorer& explorer, tree::Nodes& nodes, const tree::NodeRef& node,
                 const SearchQuery& query, ProcedureIndex& procedures, SearchResult& result) {
    switch (node->Kind()) {
        case tree::NodeKind::Component: {
            if (query.kind == SearchQuery::Kind::Name) {
                const bool kept = Contains(text::ToLower(node->Text()), query.text);
                result.components += kept ? 1 : 0;
                return kept;
            }
            const std::string key = node->Key();
            bool any = false;
            for (const std::string& name : procedures.NamesOf(explorer, key))
                any = any || Contains(name, query.text);
            if (!any) return false;
            const std::int32_t shown =
                explorer.ShowMatchingLines(key, [&](const analysis::clsLine& line) {
                    const auto name = ProcedureNameOf(line.LineContent.view());
                    return name && Contains(text::ToLower(*name), query.text);
                });
            if (shown < 0) ++result.leftOut;
            if (shown == 0) return false;
            ++result.components;
            result.procedures += std::max(shown, 0);
            return true;
        }
        case tree::NodeKind::Project:
        case tree::NodeKind::Folder: {
            if (node->Kind() == tree::NodeKind::Folder && query.kind == SearchQuery::Kind::Name &&
                Contains(text::ToLower(node->Text()), query.text)) {
                for (tree::NodeRef child = node->Child(); child; child = child->Next())
                    result.components += child->Kind() == tree::NodeKind::Component ? 1 : 0;
                if (node->Child() && !node->Expanded()) node->SetExpanded(true);
                return true;
            }
            std::vector<tree::NodeRef> children;
            for (tree::NodeRef child = node->Child(); child; child = child->Next())
                children.push_back(child);
            bool any = false;
            for (const tree::NodeRef& child : children) {
                if (KeepMatches(explorer, nodes, child, query, procedures, result)) {
                    any = true;
                } else {
                    nodes.Remove(*child);
                }
            }
            if (any && !node->Expanded()) node->SetExpanded(true);
            return any;
        }
        default:
            return false;
    }
}

}  // namespace

SearchQuery ParseSearch(std::string_view typed) {
    const std::string_view trimmed = text::Trim(typed);
    SearchQuery query;
    if (trimmed.starts_with(':')) {
        query.text = text::ToLower(text::Trim(trimmed.substr(1)));
        if (!query.text.empty()) query.kind = SearchQuery::Kind::Procedure;
        return query;
    }
    query.text = text::ToLower(trimmed);
    if (!query.text.empty()) query.kind = SearchQuery::Kind::Name;
    return query;
}

std::optional<std::string> ProcedureNameOf(std::string_view statement) {
    std::size_t at = 0;
    while (at < statement.size() && IsBlank(statement[at]))
        ++at;
    std::string word = text::ToLower(NextWord(statement, at));
    while (word == "public" || word == "private" || word == "friend" || word == "static")
        word = text::ToLower(NextWord(statement, at));
    if (word == "property") {
        const std::string accessor = text::ToLower(NextWord(statement, at));
        if (accessor != "get" && accessor != "let" && accessor != "set") return std::nullopt;
    } else if (word != "sub" && word != "function") {
        return std::nullopt;
    }
    const std::string_view name = NextWord(statement, at);
    if (name.empty()) return std::nullopt;
    // A name runs up to its parameter list, its type or the end: "Sub A.B" is no declaration.
    if (at < statement.size() && statement[at] != '(' && statement[at] != '\'' &&
        !IsBlank(statement[at - 1]))
        return std::nullopt;
    return std::string(name);
}

const std::vector<std::string>& ProcedureIndex::NamesOf(const ProjectExplorer& explorer,
                                                        const std::string& componentKey) {
    const auto found = names_.find(componentKey);
    if (found != names_.end()) return found->second;
    return names_[componentKey] = LowerProcedureNames(explorer.ComponentCode(componentKey));
}

std::vector<tree::NodeRef> NodesInTreeOrder(const tree::Nodes& nodes) {
    std::vector<tree::NodeRef> order;
    order.reserve(static_cast<std::size_t>(nodes.Count()));
    std::vector<tree::NodeRef> pending;
    for (tree::NodeRef root = tree::FirstRoot(nodes); root; root = root->Next())
        pending.push_back(root);
    std::reverse(pending.begin(), pending.end());
    while (!pending.empty()) {
        tree::NodeRef node = std::move(pending.back());
        pending.pop_back();
        const std::size_t mark = pending.size();
        for (tree::NodeRef child = node->Child(); child; child = child->Next())
            pending.push_back(child);
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(mark), pending.end());
        order.push_back(std::move(node));
    }
    return order;
}

TreeSnapshot TakeSnapshot(tree::TreeView& view) {
    TreeSnapshot snapshot;
    for (const tree::NodeRef& node : NodesInTreeOrder(view.Nodes())) {
        if (node->Expanded()) snapshot.expanded.push_back(node->Key());
    }
    if (const tree::NodeRef selected = view.SelectedItem()) snapshot.selected = selected->Key();
    return snapshot;
}

void RestoreSnapshot(ProjectExplorer& explorer, tree::TreeView& view,
                     const TreeSnapshot& snapshot) {
    const tree::UpdateScope update(view);
    explorer.RefreshProjects();
    tree::Nodes& nodes = view.Nodes();
    // Parents come before their children in the snapshot, so each opens into a built subtree.
    for (const std::string& key : snapshot.expanded) {
        if (!nodes.Exists(key)) continue;
        const tree::NodeRef node = nodes.Item(key);
        if (node->Expanded()) continue;
        if (node->Kind() == tree::NodeKind::Component) {
            explorer.ExpandNode(*node);
        } else {
            node->SetExpanded(true);
        }
    }
    // Red nodes open their ancestors as they are shown; those that were closed close again.
    const std::set<std::string, std::less<>> open(snapshot.expanded.begin(),
                                                  snapshot.expanded.end());
    for (const tree::NodeRef& node : NodesInTreeOrder(nodes)) {
        try {
            if (!node->Expanded() || open.contains(node->Key())) continue;
            if (node->Kind() == tree::NodeKind::Component) {
                explorer.CollapseNode(*node);
            } else {
                node->SetExpanded(false);
            }
        } catch (const std::exception&) {
            // A node closed with its component is gone already.
        }
    }
    if (!snapshot.selected.empty() && nodes.Exists(snapshot.selected))
        nodes.Item(snapshot.selected)->SetSelected(true);
}

SearchResult ApplySearch(ProjectExplorer& explorer, tree::TreeView& view, const SearchQuery& query,
                         ProcedureIndex& procedures) {
    const tree::UpdateScope update(view);
    explorer.RefreshProjects();
    SearchResult result;
    if (query.kind == SearchQuery::Kind::None) return result;
    tree::Nodes& nodes = view.Nodes();
    std::vector<tree::NodeRef> roots;
    for (tree::NodeRef root = tree::FirstRoot(nodes); root; root = root->Next())
        roots.push_back(root);
    for (const tree::NodeRef& root : roots) {
        try {
            if (!KeepMatches(explorer, nodes, root, query, procedures, result)) nodes.Remove(*root);
        } catch (const std::exception&) {
            // A project the tree cannot cut down stays as it is.
        }
    }
    return result;
}

tree::NodeRef FirstMatch(const tree::Nodes& nodes) {
    for (const tree::NodeRef& node : NodesInTreeOrder(nodes)) {
        if (node->Kind() != tree::NodeKind::Component) continue;
        const tree::NodeRef child = node->Child();
        return child && child->Kind() == tree::NodeKind::CodeLine ? child : node;
    }
    return nullptr;
}

std::int32_t ProjectExplorer::ShowMatchingLines(
    std::string_view componentKey, const std::function<bool(const analysis::clsLine&)>& keep) {
    const std::string key(componentKey);
    if (!NodeExists(key)) return 0;
    const std::string text = CodeOf(key);
    const analysis::CodeTree code =
        analysis::BuildCodeTree(text, displayOptions_.ReadDisplayOptions());
    std::vector<const analysis::clsLine*> kept;
    for (std::int32_t i = 0; i < code.root->ChildCount; ++i) {
        const analysis::clsLine* line = code.root->Child(i);
        if (line != nullptr && keep(*line)) kept.push_back(line);
    }
    if (kept.empty()) return 0;
    if (static_cast<std::int64_t>(Nodes().Count()) + code.lineCount > kNodeLimit) return -1;
    const tree::NodeRef node = Nodes().Item(key);
    Nodes().RemoveChildren(*node);
    for (const analysis::clsLine* line : kept) {
        tree::NodeRef added;
        try {
            added = AddCodeNode(key, *line, *node);
        } catch (const std::exception&) {
            continue;
        }
        ShowLines(key, *line, added);
    }
    d_components[key] = CodeTreeState{code.lineCount};
    node->SetExpanded(true);
    if (CodeShown) CodeShown(*node, text);
    return static_cast<std::int32_t>(kept.size());
}

}  // namespace arbolet::explorer
