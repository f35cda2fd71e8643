// textDocument/documentHighlight: on any keyword of a block (opener, Else/ElseIf/Case/#Else,
// closer, or a procedure's name), every keyword of that block. Elsewhere, and on a closing
// statement that matches no block, nothing.
#include "lsp/features.h"

namespace arbolet::lsp {
namespace {

namespace vb6 = analysis::vb6;

constexpr int kHighlightText = 1;

bool Holds(const vb6::Span& span, std::int32_t line, std::int32_t column) {
    return span.line == line && column >= span.column && column <= span.column + span.length;
}

bool HoldsAny(const vb6::Block& block, std::int32_t line, std::int32_t column) {
    if (Holds(block.opener, line, column) || Holds(block.nameSpan, line, column)) return true;
    if (block.closer && Holds(*block.closer, line, column)) return true;
    for (const auto& middle : block.middles) {
        if (Holds(middle, line, column)) return true;
    }
    return false;
}

}  // namespace

Json DocumentHighlights(const DocumentView& document, Position position) {
    Json highlights = Json::array();
    const std::int32_t line = position.line + 1;  // the tree's 1-based lines
    const std::int32_t column = document.text.ByteColumn(position, document.encoding);
    const auto& blocks = document.analysis.blocks.blocks;
    // The innermost block wins where two share a line (`Next j, i` closes two loops).
    const vb6::Block* found = nullptr;
    for (const auto& block : blocks) {
        if (block.opener.line > line) break;
        if (HoldsAny(block, line, column)) found = &block;
    }
    if (!found) return highlights;
    const auto add = [&](const vb6::Span& span) {
        const Range range =
            document.text.RangeOf(span.line - 1, span.column, span.length, document.encoding);
        highlights.push_back(Json{{"range", ToJson(range)}, {"kind", kHighlightText}});
    };
    add(found->opener);
    for (const auto& middle : found->middles)
        add(middle);
    if (found->closer) add(*found->closer);
    return highlights;
}

}  // namespace arbolet::lsp
