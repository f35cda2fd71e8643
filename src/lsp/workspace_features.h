// The features that look across the workspace: workspace/symbol and textDocument/definition.
#pragma once

#include <string_view>

#include "lsp/protocol.h"
#include "lsp/workspace_index.h"

namespace arbolet::lsp {

// SymbolInformation[] for a query: case-insensitive fuzzy matching (the query's characters in
// order) over procedures, Types, Enums, constants, module-level variables, Declares, events and
// component names; best matches first, at most `limit`.
Json WorkspaceSymbols(const WorkspaceIndex& index, std::string_view query, std::size_t limit = 500);

// Whether the query's characters appear in the name in order, ignoring case; the lower the
// score the better the match (exact, prefix, substring, scattered); negative: no match.
int FuzzyScore(std::string_view lowerQuery, std::string_view lowerName);

// Location[] of the declaration of the name at the position of a document: the component's own
// declarations first, then the public ones of the other components of its projects; a name
// after `Module.` is looked up in that component first. `current` is the document's entry.
Json Definition(const WorkspaceIndex& index, const IndexedComponent& current,
                const TextDocument& text, Position position, PositionEncoding encoding);

}  // namespace arbolet::lsp
