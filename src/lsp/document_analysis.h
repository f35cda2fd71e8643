// What the server knows of one component's text: where its code begins, the VB6 block tree with
// its findings, the module-level declarations, and the regions an editor folds (the designer
// section, the attribute header, runs of comment lines). Computed from UTF-8 text in one go and
// kept until the text changes.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "analysis/vb6_block_tree.h"
#include "analysis/vb6_declarations.h"
#include "disk/component_file.h"

namespace arbolet::lsp {

// A run of 0-based lines, both ends included.
struct LineRun {
    std::int32_t first = 0;
    std::int32_t last = 0;
};

struct DocumentAnalysis {
    // Numbering of the block tree, the findings and the declarations: 1-based file lines, as
    // every message quotes them. Subtract one for the protocol's 0-based lines.
    analysis::vb6::BlockTree blocks;
    std::vector<analysis::vb6::Declaration> declarations;
    // Problems of the file itself (binary data, an unclosed designer block, long lines).
    std::vector<disk::FileDiagnostic> fileDiagnostics;
    std::int32_t firstCodeLine = 0;     // 0-based
    std::optional<LineRun> designer;    // BEGIN ... END of a form or control
    std::optional<LineRun> attributes;  // the module's Attribute lines
    std::vector<LineRun> commentRuns;   // two or more comment lines in a row
};

// Analyses a component's text (a whole file: header and code). Never fails.
DocumentAnalysis AnalyseDocument(std::string_view utf8Text);

}  // namespace arbolet::lsp
