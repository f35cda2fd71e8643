// Find as you type over the project tree: what was typed (a component or folder name, or after
// ":" a procedure name), the tree cut down to what matches, the first match, and the tree's
// expansion and selection kept from before the search so that clearing it brings them back.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "explorer/project_explorer.h"
#include "treemodel/tree_view.h"

namespace arbolet::explorer {

struct SearchQuery {
    enum class Kind : std::uint8_t { None, Name, Procedure };
    Kind kind = Kind::None;
    // Lower-cased the way VB lower-cases, trimmed; empty for None.
    std::string text;
};
// "" (or blanks) is no search; ":Text" searches procedure names; anything else component and
// folder names. A lone ":" is no search yet.
SearchQuery ParseSearch(std::string_view typed);

// The name a Sub, Function or Property declaration declares ("Refresh" for
// "Private Property Get Refresh() As Long"), nullopt for any other statement. Declare
// statements have no body and do not count.
std::optional<std::string> ProcedureNameOf(std::string_view statement);

// What the tree looked like: the keys of its expanded nodes in tree order and of the selected
// node. The first visible node is the tree control's business and stays empty here.
struct TreeSnapshot {
    std::vector<std::string> expanded;
    std::string selected;
    std::string firstVisible;
};
TreeSnapshot TakeSnapshot(tree::TreeView& view);
// Builds the tree anew and brings back the snapshot's expansion (components open into their
// code trees, everything else as it was, nodes opened since then closed) and selection. Nodes
// that no longer exist are skipped.
void RestoreSnapshot(ProjectExplorer& explorer, tree::TreeView& view, const TreeSnapshot& snapshot);

// How a search left the tree.
struct SearchResult {
    std::int32_t components = 0;  // components shown
    std::int32_t procedures = 0;  // procedure nodes shown (procedure searches)
    // Components with matching procedures left out because their code would pass the tree's
    // node limit.
    std::int32_t leftOut = 0;
};

// The procedure names of each component, lower-cased, read from its code at the first
// procedure search and kept until the projects are loaded again or the component changes, so
// that each keystroke only compares names.
class ProcedureIndex {
  public:
    const std::vector<std::string>& NamesOf(const ProjectExplorer& explorer,
                                            const std::string& componentKey);
    void Forget(const std::string& componentKey) { names_.erase(componentKey); }
    void Clear() { names_.clear(); }

  private:
    std::map<std::string, std::vector<std::string>, std::less<>> names_;
};

// Builds the whole tree and cuts it down to the query: for a name, the components whose name
// contains it and the folders whose name does (with all their components), under their
// projects; for a procedure, the components that have procedures whose name contains it,
// opened to show just those procedures with their code trees, keyed as a normal expansion.
// Projects and folders left without a match go. No search (Kind::None) leaves the whole tree.
SearchResult ApplySearch(ProjectExplorer& explorer, tree::TreeView& view, const SearchQuery& query,
                         ProcedureIndex& procedures);

// The node Enter opens after a search: the first component in tree order, or its first code
// node when it shows procedures; nullptr for an empty tree.
tree::NodeRef FirstMatch(const tree::Nodes& nodes);

// Every node in tree order (children after their parent, siblings in order).
std::vector<tree::NodeRef> NodesInTreeOrder(const tree::Nodes& nodes);

}  // namespace arbolet::explorer
