// textDocument/documentSymbol: the component's logic-flow tree as an outline. Declarations and
// procedures at the top, the blocks of each procedure below it (each branch of an If, Select
// Case or #If its own node), and the block errors as SymbolKind.Null nodes where they are.
#include <algorithm>
#include <map>
#include <sstream>

#include "analysis/vb6_statements.h"
#include "base/json_writer.h"
#include "base/utf8.h"
#include "lsp/features.h"

namespace arbolet::lsp {
namespace {

namespace vb6 = analysis::vb6;

namespace symbol_kind {
constexpr int kModule = 2;
constexpr int kNamespace = 3;
constexpr int kMethod = 6;
constexpr int kProperty = 7;
constexpr int kField = 8;
constexpr int kConstructor = 9;
constexpr int kEnum = 10;
constexpr int kFunction = 12;
constexpr int kVariable = 13;
constexpr int kConstant = 14;
constexpr int kBoolean = 17;
constexpr int kArray = 18;
constexpr int kObject = 19;
constexpr int kKey = 20;
constexpr int kNull = 21;
constexpr int kEnumMember = 22;
constexpr int kStruct = 23;
constexpr int kEvent = 24;
}  // namespace symbol_kind

// Deeper blocks are flattened into the deepest level.
constexpr int kMaxDepth = 48;

struct Symbol {
    std::string name;
    std::string detail;
    int kind = symbol_kind::kModule;
    std::int32_t firstLine = 0;  // 0-based, for ordering
    Range range;
    Range selection;
    std::vector<Symbol> children;
};

// The event procedures that build an object run first, as a constructor does.
bool IsInitializer(std::string_view name) {
    static constexpr std::string_view kObjects[] = {
        "class_", "form_", "mdiform_", "usercontrol_", "userdocument_", "propertypage_"};
    const std::string lower = text::ToLower(name);
    for (const auto object : kObjects) {
        if (lower.size() == object.size() + 10 && lower.starts_with(object) &&
            lower.ends_with("initialize")) {
            return true;
        }
    }
    return false;
}

int BlockSymbolKind(const vb6::Block& block) {
    switch (block.kind) {
        case vb6::BlockKind::Sub:
            return IsInitializer(block.name) ? symbol_kind::kConstructor : symbol_kind::kMethod;
        case vb6::BlockKind::Function:
            return symbol_kind::kFunction;
        case vb6::BlockKind::PropertyGet:
        case vb6::BlockKind::PropertyLet:
        case vb6::BlockKind::PropertySet:
            return symbol_kind::kProperty;
        case vb6::BlockKind::Type:
            return symbol_kind::kStruct;
        case vb6::BlockKind::Enum:
            return symbol_kind::kEnum;
        case vb6::BlockKind::If:
        case vb6::BlockKind::Select:
            return symbol_kind::kBoolean;
        case vb6::BlockKind::For:
        case vb6::BlockKind::ForEach:
        case vb6::BlockKind::Do:
        case vb6::BlockKind::While:
            return symbol_kind::kArray;
        case vb6::BlockKind::With:
            return symbol_kind::kObject;
        case vb6::BlockKind::ConditionalIf:
            return symbol_kind::kNamespace;
    }
    return symbol_kind::kNamespace;
}

bool IsProcedure(vb6::BlockKind kind) {
    return kind == vb6::BlockKind::Sub || kind == vb6::BlockKind::Function ||
           kind == vb6::BlockKind::PropertyGet || kind == vb6::BlockKind::PropertyLet ||
           kind == vb6::BlockKind::PropertySet;
}

int DeclarationSymbolKind(vb6::DeclarationKind kind) {
    switch (kind) {
        case vb6::DeclarationKind::Constant:
            return symbol_kind::kConstant;
        case vb6::DeclarationKind::Variable:
            return symbol_kind::kVariable;
        case vb6::DeclarationKind::TypeMember:
            return symbol_kind::kField;
        case vb6::DeclarationKind::EnumMember:
            return symbol_kind::kEnumMember;
        case vb6::DeclarationKind::Event:
            return symbol_kind::kEvent;
        default:
            return symbol_kind::kFunction;  // a Declare
    }
}

class OutlineBuilder {
  public:
    OutlineBuilder(const DocumentView& document, const Settings& settings)
        : document_(document),
          tree_(document.analysis.blocks),
          options_(settings.display),
          blocks_(settings.blocks) {
        for (const auto& declaration : document.analysis.declarations) {
            if (vb6::IsProcedureKind(declaration.kind))
                procedureDetail_[declaration.line] = declaration.detail;
        }
    }

    std::vector<Symbol> Build() {
        std::vector<Symbol> top;
        for (const auto root : tree_.roots)
            AddBlock(root, top, false);
        AddDeclarations(top);
        AddFindings(top);
        SortByLine(top);
        if (options_.SortByName) {
            std::stable_sort(top.begin(), top.end(), [](const Symbol& a, const Symbol& b) {
                return text::ToLower(a.name) < text::ToLower(b.name);
            });
        }
        return top;
    }

  private:
    const vb6::Block& BlockAt(std::int32_t index) const {
        return tree_.blocks[static_cast<std::size_t>(index)];
    }

    Range SpanRange(const vb6::Span& span) const {
        return document_.text.RangeOf(span.line - 1, span.column, span.length, document_.encoding);
    }

    Range LinesRange(std::int32_t firstLine, std::int32_t lastLine, std::int32_t column) const {
        Range range = document_.text.LinesRange(firstLine - 1, lastLine - 1, document_.encoding);
        range.start = document_.text.PositionOf(firstLine - 1, column, document_.encoding);
        return range;
    }

    // The statement that starts at a keyword, as the line shows it.
    std::string StatementAt(const vb6::Span& span) const {
        const std::string_view line = document_.text.Line(span.line - 1);
        const std::string_view rest =
            line.substr(std::min(line.size(), static_cast<std::size_t>(std::max(span.column, 0))));
        std::string statement;
        vb6::ForEachStatement(rest, [&](const vb6::Statement& s) {
            if (s.first) statement = s.text;
        });
        return statement.empty() ? std::string(rest.substr(0, span.length)) : statement;
    }

    bool Shows(const vb6::Block& block) const {
        if (block.kind == vb6::BlockKind::Type) return options_.ShowTypes;
        if (block.kind == vb6::BlockKind::Enum) return options_.ShowEnums;
        if (block.kind == vb6::BlockKind::ConditionalIf && !options_.ShowCompiler) return false;
        return true;
    }

    // Adds the block's symbol to `into`; a hidden block gives its children to `into` instead.
    void AddBlock(std::int32_t index, std::vector<Symbol>& into, bool insideProcedure,
                  int depth = 0) {
        const vb6::Block& block = BlockAt(index);
        if (depth >= kMaxDepth) return AddFlattened(index, into);
        if (block.kind == vb6::BlockKind::Type || block.kind == vb6::BlockKind::Enum) {
            if (Shows(block)) into.push_back(DeclarationBlock(index));
            return;
        }
        const bool procedure = IsProcedure(block.kind);
        const bool statement = !procedure && block.kind != vb6::BlockKind::ConditionalIf;
        const bool hidden = !Shows(block) || (insideProcedure && !blocks_) ||
                            (statement && !insideProcedure && !blocks_);
        if (hidden) {
            for (const auto child : block.children)
                AddBlock(child, into, insideProcedure || procedure, depth + 1);
            return;
        }
        Symbol symbol;
        symbol.name = block.name.empty() ? StatementAt(block.opener) : block.name;
        symbol.kind = BlockSymbolKind(block);
        symbol.firstLine = block.opener.line - 1;
        symbol.range = LinesRange(block.opener.line, block.lastLine, block.opener.column);
        symbol.selection = SpanRange(block.nameSpan);
        if (procedure) {
            const auto detail = procedureDetail_.find(block.nameSpan.line);
            if (detail != procedureDetail_.end()) symbol.detail = detail->second;
        }
        AddBranches(block, symbol, insideProcedure || procedure, depth + 1);
        if (block.closer && options_.ShowSectionEnd) {
            Symbol end;
            end.name = StatementAt(*block.closer);
            end.kind = symbol_kind::kKey;
            end.firstLine = block.closer->line - 1;
            end.range = end.selection = SpanRange(*block.closer);
            symbol.children.push_back(std::move(end));
        }
        into.push_back(std::move(symbol));
    }

    // The block's children, grouped under one node per Else, ElseIf, Case or #Else branch.
    void AddBranches(const vb6::Block& block, Symbol& symbol, bool insideProcedure, int depth) {
        std::size_t child = 0;
        const auto addUntil = [&](std::int32_t line, std::vector<Symbol>& into) {
            while (child < block.children.size() &&
                   BlockAt(block.children[child]).opener.line < line) {
                AddBlock(block.children[child++], into, insideProcedure, depth);
            }
        };
        const bool branches = !block.middles.empty() && (blocks_ || !insideProcedure);
        if (!branches) {
            addUntil(INT32_MAX, symbol.children);
            return;
        }
        addUntil(block.middles.front().line, symbol.children);
        for (std::size_t i = 0; i < block.middles.size(); ++i) {
            const vb6::Span& middle = block.middles[i];
            const std::int32_t next =
                i + 1 < block.middles.size()
                    ? block.middles[i + 1].line
                    : (block.closer ? block.closer->line : block.lastLine + 1);
            Symbol branch;
            branch.name = StatementAt(middle);
            branch.kind = symbol.kind;
            branch.firstLine = middle.line - 1;
            branch.range = LinesRange(middle.line, std::max(middle.line, next - 1), middle.column);
            branch.selection = SpanRange(middle);
            addUntil(next, branch.children);
            symbol.children.push_back(std::move(branch));
        }
        addUntil(INT32_MAX, symbol.children);
    }

    // Blocks nested deeper than an outline can usefully show (and than the JSON writer's
    // recursion should go) are listed side by side at the deepest level.
    void AddFlattened(std::int32_t index, std::vector<Symbol>& into) {
        std::vector<std::int32_t> pending{index};
        while (!pending.empty()) {
            const vb6::Block& block = BlockAt(pending.back());
            pending.pop_back();
            Symbol symbol;
            symbol.name = block.name.empty() ? StatementAt(block.opener) : block.name;
            symbol.kind = BlockSymbolKind(block);
            symbol.firstLine = block.opener.line - 1;
            symbol.range = LinesRange(block.opener.line, block.lastLine, block.opener.column);
            symbol.selection = SpanRange(block.nameSpan);
            into.push_back(std::move(symbol));
            pending.insert(pending.end(), block.children.rbegin(), block.children.rend());
        }
    }

    // A Type or Enum with its members.
    Symbol DeclarationBlock(std::int32_t index) {
        const vb6::Block& block = BlockAt(index);
        Symbol symbol;
        symbol.name = block.name;
        symbol.kind = BlockSymbolKind(block);
        symbol.firstLine = block.opener.line - 1;
        symbol.range = LinesRange(block.opener.line, block.lastLine, block.opener.column);
        symbol.selection = SpanRange(block.nameSpan);
        const auto& declarations = document_.analysis.declarations;
        for (std::size_t i = 0; i < declarations.size(); ++i) {
            const auto& owner = declarations[i];
            if (owner.line != block.nameSpan.line || (owner.kind != vb6::DeclarationKind::Type &&
                                                      owner.kind != vb6::DeclarationKind::Enum)) {
                continue;
            }
            for (std::size_t j = i + 1;
                 j < declarations.size() && declarations[j].parent == static_cast<std::int32_t>(i);
                 ++j) {
                symbol.children.push_back(DeclarationSymbol(declarations[j]));
            }
            break;
        }
        return symbol;
    }

    Symbol DeclarationSymbol(const vb6::Declaration& declaration) const {
        Symbol symbol;
        symbol.name = declaration.name;
        symbol.detail = declaration.detail;
        symbol.kind = DeclarationSymbolKind(declaration.kind);
        symbol.firstLine = declaration.line - 1;
        symbol.selection = document_.text.RangeOf(declaration.line - 1, declaration.column,
                                                  declaration.length, document_.encoding);
        symbol.range = document_.text.LinesRange(declaration.line - 1, declaration.endLine - 1,
                                                 document_.encoding);
        symbol.range.start = symbol.selection.start;
        return symbol;
    }

    bool ShowsDeclaration(vb6::DeclarationKind kind) const {
        switch (kind) {
            case vb6::DeclarationKind::Constant:
                return options_.ShowConstants;
            case vb6::DeclarationKind::Variable:
                return options_.ShowVariables;
            case vb6::DeclarationKind::Declare:
            case vb6::DeclarationKind::Event:
                return true;
            default:
                return false;  // members, Types, Enums and procedures come with their blocks
        }
    }

    // The innermost shown symbol among `symbols` (and below) whose lines hold the line.
    static std::vector<Symbol>* ContainerOf(std::vector<Symbol>& symbols, std::int32_t line) {
        std::vector<Symbol>* container = &symbols;
        while (true) {
            Symbol* inner = nullptr;
            for (auto& symbol : *container) {
                if (symbol.kind != symbol_kind::kKey && symbol.kind != symbol_kind::kNull &&
                    symbol.range.start.line <= line && line <= symbol.range.end.line &&
                    !(symbol.kind == symbol_kind::kStruct || symbol.kind == symbol_kind::kEnum)) {
                    inner = &symbol;
                }
            }
            if (!inner) return container;
            container = &inner->children;
        }
    }

    void AddDeclarations(std::vector<Symbol>& top) {
        for (const auto& declaration : document_.analysis.declarations) {
            if (!ShowsDeclaration(declaration.kind)) continue;
            ContainerOf(top, declaration.line - 1)->push_back(DeclarationSymbol(declaration));
        }
    }

    void AddFindings(std::vector<Symbol>& top) {
        for (const auto& finding : tree_.findings) {
            const std::int32_t line =
                std::clamp(finding.line - 1, 0, std::max(document_.text.LineCount() - 1, 0));
            Symbol error;
            error.name = finding.message;
            error.detail = "error: " + std::string(vb6::RuleId(finding.rule));
            error.kind = symbol_kind::kNull;
            error.firstLine = line;
            error.range = error.selection =
                document_.text.LinesRange(line, line, document_.encoding);
            ContainerOf(top, line)->push_back(std::move(error));
        }
    }

    static void SortByLine(std::vector<Symbol>& symbols) {
        std::stable_sort(symbols.begin(), symbols.end(), [](const Symbol& a, const Symbol& b) {
            return a.firstLine < b.firstLine;
        });
        for (auto& symbol : symbols)
            SortByLine(symbol.children);
    }

    const DocumentView& document_;
    const vb6::BlockTree& tree_;
    analysis::DisplayOptions options_;
    bool blocks_;
    std::map<std::int32_t, std::string> procedureDetail_;
};

// Outlines of large modules are big: they are written straight to text, not built as JSON
// values first.
void Write(text::JsonWriter& json, const Range& range) {
    json.BeginObject();
    for (const auto& [key, position] : {std::pair{"start", range.start}, {"end", range.end}}) {
        json.Key(key);
        json.BeginObject();
        json.Key("line");
        json.Integer(position.line);
        json.Key("character");
        json.Integer(position.character);
        json.EndObject();
    }
    json.EndObject();
}

void Write(text::JsonWriter& json, const Symbol& symbol) {
    json.BeginObject();
    json.Key("name");
    json.String(symbol.name.empty() ? std::string_view("(unnamed)") : symbol.name);
    if (!symbol.detail.empty()) {
        json.Key("detail");
        json.String(symbol.detail);
    }
    json.Key("kind");
    json.Integer(symbol.kind);
    json.Key("range");
    Write(json, symbol.range);
    json.Key("selectionRange");
    Write(json, symbol.selection);
    json.Key("children");
    json.BeginArray();
    for (const auto& child : symbol.children)
        Write(json, child);
    json.EndArray();
    json.EndObject();
}

}  // namespace

std::string DocumentSymbols(const DocumentView& document, const Settings& settings) {
    std::ostringstream out;
    text::JsonWriter json(out);
    json.BeginArray();
    for (const auto& symbol : OutlineBuilder(document, settings).Build())
        Write(json, symbol);
    json.EndArray();
    return std::move(out).str();
}

}  // namespace arbolet::lsp
