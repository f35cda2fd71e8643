// Finding one's way through the code of big projects in the tree: the node of a line of code
// (where the caret is), and stepping from one red error node to the next across the open
// projects, with the components that have block errors known without opening them.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "explorer/project_explorer.h"
#include "treemodel/tree_view.h"

namespace arbolet::explorer {

// A line of a component's code: the component by the name the tree shows it by, in a project
// ("" for the first component of that name in tree order), and its 1-based code line.
struct CodeLocation {
    std::string project;
    std::string component;
    std::int64_t line = 1;
};

// The innermost code node below `component` whose lines contain the 0-based code line: a node
// covers its own line to the last line of its descendants. nullptr when none does (a line
// between procedures, or a component that is not open).
tree::NodeRef InnermostCodeNode(const tree::Node& component, std::int64_t line);

// Opens the location's component and returns the node to select for the line: the innermost
// code node that contains it, else the component node itself; nullptr when the component is
// not in the tree.
tree::NodeRef LocateLine(ProjectExplorer& explorer, tree::Nodes& nodes,
                         const CodeLocation& location);

// Which components have block errors, by the VB6 block checker over their code, so that the
// status line can count them and stepping through errors opens only those components.
class BlockErrorCensus {
  public:
    // Checks every component node of the tree.
    void Recount(const ProjectExplorer& explorer, const tree::Nodes& nodes);
    // Checks one component again (its code changed), or forgets it when it is `gone`.
    void Recheck(const ProjectExplorer& explorer, const std::string& componentKey, bool gone);
    bool Flagged(std::string_view componentKey) const { return flagged_.contains(componentKey); }
    std::int32_t Count() const { return static_cast<std::int32_t>(flagged_.size()); }

  private:
    std::set<std::string, std::less<>> flagged_;
};

// The status line under the tree for a number of components with errors; "" for none.
std::string CensusText(std::int32_t components);

// The next (or, not `forward`, the previous) red code node after `from` in tree order, going
// round past the end; nullptr when there is none. Components are looked into when they are
// open, or when the census flags them: those are opened, and closed again when their tree has
// no red node (the window's rules are not the checker's). `from` nullptr starts at the top
// (forward) or the bottom.
tree::NodeRef StepToError(ProjectExplorer& explorer, tree::Nodes& nodes,
                          const BlockErrorCensus& census, const tree::Node* from, bool forward);

}  // namespace arbolet::explorer
