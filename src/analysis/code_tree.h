// The code analysis entry point: a component's code text in, its logic-flow tree out.
//
// Analysis never fails: any text, however malformed, gives a tree, with red error nodes where
// blocks do not match.
#pragma once

#include <string_view>
#include <vector>

#include "analysis/cls_line.h"
#include "analysis/display_options.h"
#include "analysis/line_arena.h"

namespace arbolet::analysis {

struct CodeTree {
    LineArena arena;
    clsLine* root = nullptr;
    // Lines of the split code text (the highest line index + 1).
    std::int32_t lineCount = 0;
};

// Prepares the lines, runs the logic-flow builder and validator, and sorts the top level when
// SortByName is on. The text is the code as the IDE's code module holds it, lines joined by CRLF.
CodeTree BuildCodeTree(std::string_view codeText, const DisplayOptions& options);

// Visits every node below the root in tree order (children 0 .. ChildCount-1): `enter` before a
// node's children and `leave` after them, each with the node's depth (1 for the root's children).
// Iterative, so that nesting thousands deep cannot exhaust the call stack.
template <typename Enter, typename Leave>
void WalkTree(const clsLine& root, Enter&& enter, Leave&& leave) {
    struct Frame {
        const clsLine* line;
        std::int32_t next;
    };
    std::vector<Frame> frames{{&root, 0}};
    while (!frames.empty()) {
        Frame& top = frames.back();
        if (top.next >= top.line->ChildCount) {
            if (frames.size() > 1) leave(*top.line, static_cast<int>(frames.size() - 1));
            frames.pop_back();
            continue;
        }
        const clsLine* child = top.line->Child(top.next++);
        if (child == nullptr) continue;
        enter(*child, static_cast<int>(frames.size()));
        frames.push_back({child, 0});
    }
}

template <typename Enter>
void WalkTree(const clsLine& root, Enter&& enter) {
    WalkTree(root, enter, [](const clsLine&, int) {});
}

}  // namespace arbolet::analysis
