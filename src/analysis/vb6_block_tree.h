// The block structure of VB6 code as a tree, from the same single pass that checks it: every
// procedure, `Type`, `Enum`, statement block and `#If` with where its keywords are, its branches,
// how it ends, and the findings of `CheckBlocks` as typed data beside it.
//
// Language front ends (document symbols, folding, the tool window) use the tree; `arbolet check`
// uses the findings. Both come from `ParseBlocks`, so they can never disagree.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/vb6_blocks.h"

namespace arbolet::analysis::vb6 {

enum class BlockKind : std::uint8_t {
    Sub,
    Function,
    PropertyGet,
    PropertyLet,
    PropertySet,
    Type,
    Enum,
    If,
    Select,
    For,
    ForEach,
    Do,
    While,
    With,
    ConditionalIf,
};

bool IsProcedureKind(BlockKind kind);

// A keyword or name on one physical line.
struct Span {
    std::int32_t line = 0;    // physical line, numbered from the first line given
    std::int32_t column = 0;  // 0-based byte offset in that physical line of the source
    std::int32_t length = 0;  // in bytes

    friend bool operator==(const Span&, const Span&) = default;
};

struct Block {
    BlockKind kind = BlockKind::If;
    // Procedures, `Type` and `Enum`: the name as written. Other blocks: the opening statement,
    // trimmed, continuations joined.
    std::string name;
    Span opener;    // "Private Sub", "Property Get", "If", "For Each", "Select Case", "#If", ...
    Span nameSpan;  // declarations: the name; other blocks: the opener
    std::int32_t openerEndLine = 0;  // last physical line of the opening statement
    std::vector<Span> middles;       // `ElseIf`, `Else`, `Case`, `#ElseIf`, `#Else`
    std::optional<Span> closer;      // "End If", "Next", "Loop", "Wend", "End Sub"...; none: open
    // The last physical line the block covers: its closer's, or, for a block never closed, the
    // line before the statement that cut it off (the module's last line at its end).
    std::int32_t lastLine = 0;
    std::int32_t parent = -1;  // index into BlockTree::blocks; -1 at the top level
    std::vector<std::int32_t> children;
};

struct BlockTree {
    std::vector<Block> blocks;  // in the order of their openers
    std::vector<std::int32_t> roots;
    std::vector<BlockFinding> findings;  // exactly what CheckBlocks returns for the same code
};

// The parent of a block is the innermost block open at its opener, an `#If` included. A block
// opened in a later `#If` branch in place of one of the first branch (two headers of one
// procedure) ends where its branch ends, without a closer and without a finding: the compiler
// continues with the first branch's block.
//
// Never fails; linear in the size of the code.
BlockTree ParseBlocks(std::string_view code, std::int32_t firstLine = 1);

}  // namespace arbolet::analysis::vb6
