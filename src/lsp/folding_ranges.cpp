// textDocument/foldingRange: every block of more than one line (each branch of an If, Select
// Case or #If on its own), runs of comment lines, the attribute header and a form's designer
// section. A block folds up to the line before its closing statement, which stays visible.
#include "lsp/features.h"

namespace arbolet::lsp {
namespace {

namespace vb6 = analysis::vb6;

void Add(Json& ranges, std::int32_t first, std::int32_t last, const char* kind = nullptr) {
    if (last <= first) return;
    Json range{{"startLine", first}, {"endLine", last}};
    if (kind) range["kind"] = kind;
    ranges.push_back(std::move(range));
}

}  // namespace

Json FoldingRanges(const DocumentView& document) {
    Json ranges = Json::array();
    const DocumentAnalysis& analysis = document.analysis;
    if (analysis.designer) Add(ranges, analysis.designer->first, analysis.designer->last, "region");
    if (analysis.attributes) {
        Add(ranges, analysis.attributes->first, analysis.attributes->last, "imports");
    }
    for (const vb6::Block& block : analysis.blocks.blocks) {
        // 1-based lines; the fold of a part ends before the line that starts the next part.
        const std::int32_t end = block.closer ? block.closer->line - 1 : block.lastLine;
        std::int32_t start = block.opener.line;
        for (const vb6::Span& middle : block.middles) {
            Add(ranges, start - 1, middle.line - 2);
            start = middle.line;
        }
        Add(ranges, start - 1, end - 1);
    }
    for (const LineRun& run : analysis.commentRuns)
        Add(ranges, run.first, run.last, "comment");
    return ranges;
}

}  // namespace arbolet::lsp
