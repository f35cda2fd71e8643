// The small code trees that the display options dialog shows while options are ticked: three
// built-in pieces of VB code, each run through the real code-tree build with the options given.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "analysis/display_options.h"

namespace arbolet::windows::dialogs {

// One node of a sample tree, in the order the tree view shows them.
struct SampleNode {
    int depth = 1;  // 1 for the top level
    std::string text;
    std::int32_t colour = 0;  // a Windows colour value, as the code view colours its nodes
};

inline constexpr int kSampleCount = 3;

// The code of sample 0 (declarations), 1 (procedure flow) or 2 (directives and order).
const char* SampleCode(int sample) noexcept;

// The sample's code tree as the tool window would show it with these options.
std::vector<SampleNode> BuildSampleTree(int sample, const analysis::DisplayOptions& options);

}  // namespace arbolet::windows::dialogs
