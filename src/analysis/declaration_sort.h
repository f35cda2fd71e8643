// The top-level sort by name: Option lines first, then declarations, then procedures by name,
// each block's closing line right after its opener.
#pragma once

#include <string>
#include <string_view>

#include "analysis/cls_line.h"

namespace arbolet::analysis {

// The sort key of one top-level line, computed from its SortBy (or LCaseContent when empty).
std::string DeclarationSortKey(const clsLine& line);

// Writes every top-level line's sort key into its SortBy and orders the root's children by it,
// in binary (case-sensitive, by character code) order.
void SortTopLevel(clsLine& root);

}  // namespace arbolet::analysis
