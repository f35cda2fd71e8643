// Block structure of VB6 code as the VB6 compiler accepts it, checked in one pass without
// building a display tree: `If`, `For`, `Do`, `While`, `Select Case`, `With`, procedures,
// `Type`, `Enum` and `#If` must open and close in order.
//
// This is the rule set of `arbolet check`; the tool window keeps its own rules (logic_flow.h).
// Every diagnostic says what is wrong and where the block concerned began. The source may be in
// any ASCII-compatible code page: names in messages are the source's own bytes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace arbolet::analysis::vb6 {

enum class BlockRule : std::uint8_t {
    UnclosedBlock,        // a block still open where its procedure or the module ends
    UnmatchedEnd,         // a closing statement without its opening one
    MisplacedBranch,      // `Else`, `ElseIf`, `Case`, `#Else` outside their block, or late
    NextNesting,          // `Next j` where the innermost open loop is `For i`
    MismatchedEnd,        // `End Sub` closing a `Function`, `End Enum` closing a `Type`
    StatementBeforeCase,  // a statement between `Select Case` and its first `Case`
    ConditionalBranches,  // `#If` branches that leave different blocks open
    // `End Sub` closing a `Function` or `Property`: VB6 accepts it, so it is only a warning.
    MismatchedProcedureEnd,
};

// The stable rule id shown in every output format.
std::string_view RuleId(BlockRule rule);
// One sentence on what the rule finds.
std::string_view RuleDescription(BlockRule rule);
inline constexpr BlockRule kAllBlockRules[] = {
    BlockRule::UnclosedBlock,       BlockRule::UnmatchedEnd,
    BlockRule::MisplacedBranch,     BlockRule::NextNesting,
    BlockRule::MismatchedEnd,       BlockRule::StatementBeforeCase,
    BlockRule::ConditionalBranches, BlockRule::MismatchedProcedureEnd,
};

// Whether the rule's findings are warnings (code that compiles) rather than errors.
bool IsWarning(BlockRule rule);

struct BlockFinding {
    BlockRule rule = BlockRule::UnclosedBlock;
    std::int32_t line = 0;         // where the finding is, numbered from the first line given
    std::int32_t relatedLine = 0;  // the opener (or the probable place of a missing end); 0: none
    std::string relatedText;       // what the related line is, e.g. "`For i` opened here"
    std::string message;
};

// Checks the block structure of code whose first line has the number `firstLine`. Findings
// come in order of their line. Never fails; linear in the size of the code.
std::vector<BlockFinding> CheckBlocks(std::string_view code, std::int32_t firstLine = 1);

}  // namespace arbolet::analysis::vb6
