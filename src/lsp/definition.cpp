// textDocument/definition: from a name to where it is declared.
#include "base/utf8.h"
#include "lsp/workspace_features.h"

namespace arbolet::lsp {
namespace {

bool IsNameByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           byte >= 0x80;
}

// The name around a byte column, and the name before a `.` in front of it.
struct NameAt {
    std::string name;
    std::string qualifier;
};

NameAt FindName(std::string_view line, std::size_t column) {
    NameAt found;
    column = std::min(column, line.size());
    std::size_t start = column;
    while (start > 0 && IsNameByte(line[start - 1]))
        --start;
    std::size_t end = column;
    while (end < line.size() && IsNameByte(line[end]))
        ++end;
    found.name = line.substr(start, end - start);
    if (start > 1 && line[start - 1] == '.') {
        std::size_t qualifierStart = start - 1;
        while (qualifierStart > 0 && IsNameByte(line[qualifierStart - 1]))
            --qualifierStart;
        found.qualifier = line.substr(qualifierStart, start - 1 - qualifierStart);
    }
    return found;
}

Json Location(const IndexedComponent& component, const IndexedSymbol* symbol) {
    const Range range =
        symbol ? Range{{symbol->line, symbol->character}, {symbol->line, symbol->endCharacter}}
               : Range{{0, 0}, {0, 0}};
    return Json{{"uri", component.uri}, {"range", ToJson(range)}};
}

const IndexedSymbol* FindSymbol(const IndexedComponent& component, std::string_view lowerName,
                                bool publicOnly) {
    for (const IndexedSymbol& symbol : component.symbols) {
        if (symbol.lowerName == lowerName && (!publicOnly || symbol.isPublic)) return &symbol;
    }
    return nullptr;
}

}  // namespace

Json Definition(const WorkspaceIndex& index, const IndexedComponent& current,
                const TextDocument& text, Position position, PositionEncoding encoding) {
    const NameAt at = FindName(text.Line(position.line),
                               static_cast<std::size_t>(text.ByteColumn(position, encoding)));
    if (at.name.empty()) return nullptr;
    const std::string lowerName = text::ToLower(at.name);
    std::vector<const IndexedComponent*> mates = index.ProjectMates(current);
    if (mates.empty()) {
        for (const IndexedComponent& component : index.Components())
            mates.push_back(&component);
    }
    if (!at.qualifier.empty()) {
        const std::string lowerQualifier = text::ToLower(at.qualifier);
        for (const IndexedComponent* component : mates) {
            if (component->lowerName != lowerQualifier) continue;
            // Named with its module, even a private member is the one meant (the compiler
            // would say it is not accessible; the editor shows which it is).
            if (const IndexedSymbol* symbol = FindSymbol(*component, lowerName, false)) {
                return Json::array({Location(*component, symbol)});
            }
        }
    }
    if (const IndexedSymbol* symbol = FindSymbol(current, lowerName, false)) {
        return Json::array({Location(current, symbol)});
    }
    Json found = Json::array();
    for (const IndexedComponent* component : mates) {
        if (component->uri == current.uri) continue;
        if (const IndexedSymbol* symbol = FindSymbol(*component, lowerName, true)) {
            found.push_back(Location(*component, symbol));
        }
    }
    if (!found.empty()) return found;
    for (const IndexedComponent* component : mates) {
        if (component->lowerName == lowerName) found.push_back(Location(*component, nullptr));
    }
    return found.empty() ? Json(nullptr) : found;
}

}  // namespace arbolet::lsp
