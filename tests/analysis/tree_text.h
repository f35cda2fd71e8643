// Renders a code tree as readable text for golden files: one node per line, indented by depth,
// with its identifier, colour name and content.
#pragma once

#include <string>

#include "analysis/cls_line.h"

namespace arbolet::testing {

// For example `  [@~12] navy: Dim x As Long`. Content with leading or trailing blanks is quoted.
std::string RenderTree(const analysis::clsLine& root);

std::string ColourName(std::int32_t colour);

}  // namespace arbolet::testing
