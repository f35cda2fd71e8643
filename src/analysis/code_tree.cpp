// BuildCodeTree: preparation, logic-flow build and the optional top-level sort in one call.
#include "analysis/code_tree.h"

#include "analysis/declaration_sort.h"
#include "analysis/line_preparation.h"
#include "analysis/logic_flow.h"

namespace arbolet::analysis {

CodeTree BuildCodeTree(std::string_view codeText, const DisplayOptions& options) {
    CodeTree tree;
    clsStack lineStack;
    tree.lineCount = PrepareLines(codeText, options.ShowConstants, tree.arena, lineStack);
    tree.root = tree.arena.Make();
    tree.root->ClearChildren();

    LogicFlowBuilder builder(options, tree.arena);
    clsLine* container = tree.root;
    builder.BuildFlow(lineStack, container);

    if (options.SortByName && tree.root->ChildCount > 0) SortTopLevel(*tree.root);
    return tree;
}

}  // namespace arbolet::analysis
