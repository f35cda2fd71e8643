// The module-level declarations scanner (see vb6_declarations.h).
#include "analysis/vb6_declarations.h"

#include <optional>

#include "analysis/vb6_statements.h"

namespace arbolet::analysis::vb6 {
namespace {

// Finds physical lines by number, moving forward through the source as the scan does.
class PhysicalLines {
  public:
    explicit PhysicalLines(std::string_view source) : source_(source) {}

    // The text of the 0-based physical line, without its line end.
    std::string_view Line(std::int32_t number) {
        if (number < line_) {
            line_ = 0;
            offset_ = 0;
        }
        while (line_ < number && offset_ < source_.size()) {
            const std::size_t end = EndOfLine(offset_);
            offset_ = end + (end < source_.size() ? LineEndLength(source_.substr(end)) : 0);
            ++line_;
        }
        if (offset_ >= source_.size()) return {};
        return source_.substr(offset_, EndOfLine(offset_) - offset_);
    }

  private:
    std::size_t EndOfLine(std::size_t from) const {
        const std::size_t end = source_.find_first_of("\r\n", from);
        return end == std::string_view::npos ? source_.size() : end;
    }

    std::string_view source_;
    std::int32_t line_ = 0;
    std::size_t offset_ = 0;
};

struct Location {
    std::int32_t line = 0;  // 0-based physical line
    std::int32_t column = 0;
};

// Where a slice of a logical line's text lies in the source. A continued line's pieces were
// joined with each `_` turned into one blank, which is undone here.
Location Locate(const LogicalLine& logical, std::string_view slice, PhysicalLines& lines) {
    auto offset = static_cast<std::int64_t>(slice.data() - logical.text.data());
    if (logical.firstLine == logical.lastLine) {
        return {logical.firstLine, static_cast<std::int32_t>(offset)};
    }
    for (std::int32_t line = logical.firstLine; line < logical.lastLine; ++line) {
        const std::string_view physical = lines.Line(line);
        const auto underscore = static_cast<std::int64_t>(physical.find_last_of('_'));
        if (offset < underscore) return {line, static_cast<std::int32_t>(offset)};
        offset -= underscore + 1;
    }
    return {logical.lastLine, static_cast<std::int32_t>(offset)};
}

bool IsScope(std::string_view word) {
    return WordIs(word, "public") || WordIs(word, "private") || WordIs(word, "friend") ||
           WordIs(word, "global") || WordIs(word, "dim") || WordIs(word, "static");
}

// The statement's scope words, read off its front.
struct Scope {
    bool any = false;        // a scope word (or Dim) came first
    bool isPrivate = false;  // Private or Dim
    bool isPublic = false;   // Public or Global
};

Scope ReadScope(std::string_view& text) {
    Scope scope;
    for (std::string_view word = FirstWord(text); IsScope(word); word = FirstWord(text)) {
        scope.any = true;
        if (WordIs(word, "private") || WordIs(word, "dim")) scope.isPrivate = true;
        if (WordIs(word, "public") || WordIs(word, "global")) scope.isPublic = true;
        text = AfterWord(text, word);
    }
    return scope;
}

// A name at the front of the text: an identifier, or an enum member's `[escaped name]`.
std::string_view NameAt(std::string_view text) {
    if (!text.empty() && text.front() == '[') {
        const auto close = text.find(']');
        return close == std::string_view::npos ? std::string_view{} : text.substr(0, close + 1);
    }
    const std::string_view word = FirstWord(text);
    if (word.empty() || word.front() == '#' || (word.front() >= '0' && word.front() <= '9'))
        return {};
    // A type character (`Name$`, `Count%`) belongs to the name as declared.
    if (word.size() < text.size() &&
        std::string_view("%&!#@$").find(text[word.size()]) != std::string_view::npos) {
        return text.substr(0, word.size() + 1);
    }
    return word;
}

// Splits a list at the commas outside parentheses and strings.
template <typename Visit>
void ForEachListItem(std::string_view text, Visit&& visit) {
    int depth = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            const auto close = text.find('"', i + 1);
            if (close == std::string_view::npos) break;
            i = close;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            if (depth > 0) --depth;
        } else if (c == ',' && depth == 0) {
            visit(TrimBlanks(text.substr(start, i - start)));
            start = i + 1;
        }
    }
    visit(TrimBlanks(text.substr(start)));
}

std::string_view AfterName(std::string_view text, std::string_view name) {
    return TrimBlanks(text.substr(name.size()));
}

std::optional<DeclarationKind> ProcedureKind(std::string_view& text) {
    const std::string_view word = FirstWord(text);
    if (WordIs(word, "sub")) {
        text = AfterWord(text, word);
        return DeclarationKind::Sub;
    }
    if (WordIs(word, "function")) {
        text = AfterWord(text, word);
        return DeclarationKind::Function;
    }
    if (!WordIs(word, "property")) return std::nullopt;
    std::string_view rest = AfterWord(text, word);
    const std::string_view accessor = FirstWord(rest);
    DeclarationKind kind;
    if (WordIs(accessor, "get")) {
        kind = DeclarationKind::PropertyGet;
    } else if (WordIs(accessor, "let")) {
        kind = DeclarationKind::PropertyLet;
    } else if (WordIs(accessor, "set")) {
        kind = DeclarationKind::PropertySet;
    } else {
        return std::nullopt;
    }
    text = AfterWord(rest, accessor);
    return kind;
}

bool StartsProcedure(std::string_view text) {
    ReadScope(text);
    return ProcedureKind(text).has_value();
}

class Scanner {
  public:
    Scanner(std::string_view code, std::int32_t firstLine)
        : lines_(code), reader_(code), firstLine_(firstLine) {}

    std::vector<Declaration> Run() {
        while (reader_.Next(logical_)) {
            ForEachStatement(logical_.text, [this](const Statement& s) { Visit(s.text); });
        }
        return std::move(found_);
    }

  private:
    enum class Context { Module, Procedure, Type, Enum };

    void Visit(std::string_view text) {
        const std::string_view word = FirstWord(text);
        if (WordIs(word, "end")) {
            const std::string_view what = FirstWord(AfterWord(text, word));
            if (context_ == Context::Procedure &&
                (WordIs(what, "sub") || WordIs(what, "function") || WordIs(what, "property"))) {
                context_ = Context::Module;
            } else if ((context_ == Context::Type && WordIs(what, "type")) ||
                       (context_ == Context::Enum && WordIs(what, "enum"))) {
                context_ = Context::Module;
            }
            return;
        }
        switch (context_) {
            case Context::Procedure:
                return;
            case Context::Type:
            case Context::Enum:
                // A procedure header ends a Type or Enum the code forgot to close.
                if (StartsProcedure(text)) return ModuleStatement(text);
                if (!text.empty() && text.front() != '#') {
                    Member(context_ == Context::Type ? DeclarationKind::TypeMember
                                                     : DeclarationKind::EnumMember,
                           text);
                }
                return;
            case Context::Module:
                ModuleStatement(text);
                return;
        }
    }

    void ModuleStatement(std::string_view text) {
        const Scope scope = ReadScope(text);
        const std::string_view word = FirstWord(text);
        if (const auto kind = ProcedureKind(text)) {
            context_ = Context::Procedure;
            Add(*kind, text, !scope.isPrivate, -1);
        } else if (WordIs(word, "type") || WordIs(word, "enum")) {
            const bool isType = WordIs(word, "type");
            // `Type` alone is no declaration (a variable named so cannot be declared either).
            const std::string_view rest = AfterWord(text, word);
            if (NameAt(rest).empty()) return;
            block_ = Add(isType ? DeclarationKind::Type : DeclarationKind::Enum, rest,
                         !scope.isPrivate, -1);
            context_ = isType ? Context::Type : Context::Enum;
        } else if (WordIs(word, "const")) {
            ForEachListItem(AfterWord(text, word), [&](std::string_view item) {
                Add(DeclarationKind::Constant, item, scope.isPublic, -1);
            });
        } else if (WordIs(word, "declare")) {
            std::string_view rest = AfterWord(text, word);
            if (ProcedureKind(rest)) Add(DeclarationKind::Declare, rest, !scope.isPrivate, -1);
        } else if (WordIs(word, "event")) {
            Add(DeclarationKind::Event, AfterWord(text, word), true, -1);
        } else if (scope.any) {
            Variables(text, scope);
        }
    }

    void Variables(std::string_view text, const Scope& scope) {
        ForEachListItem(text, [&](std::string_view item) {
            const std::string_view word = FirstWord(item);
            if (WordIs(word, "withevents")) item = AfterWord(item, word);
            Add(DeclarationKind::Variable, item, scope.isPublic, -1);
        });
    }

    void Member(DeclarationKind kind, std::string_view text) {
        Add(kind, text, found_[static_cast<std::size_t>(block_)].isPublic, block_);
    }

    // Adds the declaration whose name begins `text`; the index, or -1 without a name.
    std::int32_t Add(DeclarationKind kind, std::string_view text, bool isPublic,
                     std::int32_t parent) {
        const std::string_view name = NameAt(text);
        if (name.empty()) return -1;
        const Location at = Locate(logical_, name, lines_);
        Declaration declaration;
        declaration.kind = kind;
        const bool bracketed = name.front() == '[';
        declaration.name = bracketed ? name.substr(1, name.size() - 2) : name;
        declaration.line = at.line + firstLine_;
        declaration.column = at.column;
        declaration.length = static_cast<std::int32_t>(name.size());
        declaration.endLine = logical_.lastLine + firstLine_;
        declaration.isPublic = isPublic;
        declaration.parent = parent;
        declaration.detail = AfterName(text, name);
        found_.push_back(std::move(declaration));
        return static_cast<std::int32_t>(found_.size() - 1);
    }

    PhysicalLines lines_;
    LineReader reader_;
    LogicalLine logical_;
    std::int32_t firstLine_;
    Context context_ = Context::Module;
    std::int32_t block_ = -1;
    std::vector<Declaration> found_;
};

}  // namespace

bool IsProcedureKind(DeclarationKind kind) {
    return kind == DeclarationKind::Sub || kind == DeclarationKind::Function ||
           kind == DeclarationKind::PropertyGet || kind == DeclarationKind::PropertyLet ||
           kind == DeclarationKind::PropertySet;
}

std::vector<Declaration> ScanDeclarations(std::string_view code, std::int32_t firstLine) {
    return Scanner(code, firstLine).Run();
}

}  // namespace arbolet::analysis::vb6
