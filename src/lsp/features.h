// The per-document features, one file each: diagnostics, document symbols, folding ranges and
// matching blocks. Each reads a document's text and its analysis and answers in JSON, with
// positions in the negotiated encoding.
#pragma once

#include <string>

#include "lsp/document_analysis.h"
#include "lsp/protocol.h"
#include "lsp/settings.h"
#include "lsp/text_document.h"

namespace arbolet::lsp {

struct DocumentView {
    const std::string& uri;
    const TextDocument& text;
    const DocumentAnalysis& analysis;
    PositionEncoding encoding = PositionEncoding::Utf16;
};

// The Diagnostic[] of publishDiagnostics: block findings and problems of the file.
Json Diagnostics(const DocumentView& document);

// The hierarchical DocumentSymbol[], as JSON text: declarations, procedures and, when
// settings.blocks is on, the blocks below each procedure with block errors as SymbolKind.Null
// children.
std::string DocumentSymbols(const DocumentView& document, const Settings& settings);

// FoldingRange[]: blocks and their branches, comment runs, the attribute header, the designer.
Json FoldingRanges(const DocumentView& document);

// DocumentHighlight[]: every keyword of the block whose keyword is at the position.
Json DocumentHighlights(const DocumentView& document, Position position);

}  // namespace arbolet::lsp
