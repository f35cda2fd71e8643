// Size and complexity figures of every procedure of a VB6 module, for `arbolet metrics` and the
// quality limits of `arbolet check`.
//
// Lines of code: the procedure's physical lines from its header to its end (or where it was cut
// off), less blank lines and lines that hold only a comment.
// Maximum nesting: the deepest block inside the procedure, the procedure itself being depth 0;
// every block counts (`If`, `Select Case`, loops, `With`, `#If`); a single-line `If` is no block.
// Cyclomatic complexity: 1, plus one for each `If` and `ElseIf` (single-line ones too), each loop
// (`For`, `For Each`, `Do`, `While`), each `Case` other than `Case Else`, each `And` and `Or` in
// the condition of an `If`, `ElseIf`, `While`, `Do While`/`Until` or `Loop While`/`Until`, and
// each `On Error GoTo` to a label (not `GoTo 0`, which turns handling off).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/vb6_block_tree.h"

namespace arbolet::analysis::vb6 {

struct ProcedureMetrics {
    std::string name;
    BlockKind kind = BlockKind::Sub;
    std::int32_t line = 0;      // of the header, numbered from the first line given
    std::int32_t lastLine = 0;  // the procedure's last line
    std::int32_t linesOfCode = 0;
    std::int32_t maxNesting = 0;
    std::int32_t complexity = 1;
};

// "Sub", "Function", "Property Get", ... as VB6 writes the keyword.
std::string_view ProcedureKeyword(BlockKind kind);

// One entry per procedure, in the order of their headers. Never fails; linear in the code.
std::vector<ProcedureMetrics> ComputeMetrics(std::string_view code, std::int32_t firstLine = 1);

// The same from a tree ParseBlocks already made of the code.
std::vector<ProcedureMetrics> ComputeMetrics(std::string_view code, const BlockTree& tree,
                                             std::int32_t firstLine = 1);

// The decision points one statement adds to the complexity (see above).
std::int32_t StatementDecisions(std::string_view statement);

}  // namespace arbolet::analysis::vb6
