// workspace/symbol: fuzzy search over the index.
#include <algorithm>

#include "base/utf8.h"
#include "lsp/workspace_features.h"

namespace arbolet::lsp {
namespace {

namespace vb6 = analysis::vb6;

struct Match {
    int score = 0;
    const IndexedComponent* component = nullptr;
    const IndexedSymbol* symbol = nullptr;  // nullptr: the component itself
};

bool Listed(vb6::DeclarationKind kind) {
    return kind != vb6::DeclarationKind::TypeMember && kind != vb6::DeclarationKind::EnumMember;
}

Json SymbolInformation(const Match& match) {
    if (!match.symbol) {
        return Json{{"name", match.component->name},
                    {"kind", match.component->symbolKind},
                    {"location", Json{{"uri", match.component->uri},
                                      {"range", ToJson(Range{{0, 0}, {0, 0}})}}}};
    }
    const IndexedSymbol& symbol = *match.symbol;
    const Range range{{symbol.line, symbol.character}, {symbol.line, symbol.endCharacter}};
    return Json{{"name", symbol.name},
                {"kind", symbol.symbolKind},
                {"location", Json{{"uri", match.component->uri}, {"range", ToJson(range)}}},
                {"containerName", match.component->name}};
}

}  // namespace

int FuzzyScore(std::string_view lowerQuery, std::string_view lowerName) {
    if (lowerQuery.empty()) return 4;
    if (lowerName == lowerQuery) return 0;
    if (lowerName.starts_with(lowerQuery)) return 1;
    if (lowerName.find(lowerQuery) != std::string_view::npos) return 2;
    std::size_t at = 0;
    for (const char c : lowerQuery) {
        at = lowerName.find(c, at);
        if (at == std::string_view::npos) return -1;
        ++at;
    }
    return 3;
}

Json WorkspaceSymbols(const WorkspaceIndex& index, std::string_view query, std::size_t limit) {
    const std::string lowerQuery = text::ToLower(text::Trim(query));
    std::vector<Match> matches;
    for (const IndexedComponent& component : index.Components()) {
        if (const int score = FuzzyScore(lowerQuery, component.lowerName); score >= 0) {
            matches.push_back({score, &component, nullptr});
        }
        for (const IndexedSymbol& symbol : component.symbols) {
            if (!Listed(symbol.kind)) continue;
            if (const int score = FuzzyScore(lowerQuery, symbol.lowerName); score >= 0) {
                matches.push_back({score, &component, &symbol});
            }
        }
    }
    const auto nameOf = [](const Match& m) -> const std::string& {
        return m.symbol ? m.symbol->name : m.component->name;
    };
    const auto better = [&](const Match& a, const Match& b) {
        if (a.score != b.score) return a.score < b.score;
        return nameOf(a).size() < nameOf(b).size();
    };
    if (matches.size() > limit) {
        std::partial_sort(matches.begin(), matches.begin() + static_cast<std::ptrdiff_t>(limit),
                          matches.end(), better);
        matches.resize(limit);
    } else {
        std::stable_sort(matches.begin(), matches.end(), better);
    }
    Json result = Json::array();
    for (const Match& match : matches)
        result.push_back(SymbolInformation(match));
    return result;
}

}  // namespace arbolet::lsp
