// The VB6 block checker (see vb6_blocks.h).
//
// Open blocks live on a persistent stack: each entry points to the one below it, so that the
// state at an `#If` is kept by remembering one index, and every branch of the `#If` starts again
// from it. An entry is never changed in place; marking an `If` as having its `Else` pushes a
// changed copy, so that a branch cannot change what another branch starts from.
#include "analysis/vb6_blocks.h"

#include <algorithm>
#include <optional>

#include "analysis/vb6_block_tree.h"
#include "analysis/vb6_indentation.h"
#include "analysis/vb6_statements.h"

namespace arbolet::analysis::vb6 {
namespace {

enum class Kind : std::uint8_t {
    If,
    For,
    ForEach,
    Do,
    While,
    Select,
    With,
    Sub,
    Function,
    Property,
    Type,
    Enum,
};

std::string_view OpenerName(Kind kind) {
    static constexpr std::string_view kNames[] = {
        "If",   "For", "For Each", "Do",       "While", "Select Case",
        "With", "Sub", "Function", "Property", "Type",  "Enum",
    };
    return kNames[static_cast<std::size_t>(kind)];
}

std::string_view CloserName(Kind kind) {
    static constexpr std::string_view kNames[] = {
        "End If",   "Next",    "Next",         "Loop",         "Wend",     "End Select",
        "End With", "End Sub", "End Function", "End Property", "End Type", "End Enum",
    };
    return kNames[static_cast<std::size_t>(kind)];
}

bool IsProcedure(Kind kind) {
    return kind == Kind::Sub || kind == Kind::Function || kind == Kind::Property;
}

bool IsDeclarationBlock(Kind kind) {
    return kind == Kind::Type || kind == Kind::Enum;
}

bool IsLoop(Kind kind) {
    return kind == Kind::For || kind == Kind::ForEach;
}

bool SameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto x = static_cast<unsigned char>(a[i]);
        const auto y = static_cast<unsigned char>(b[i]);
        if ((x >= 'A' && x <= 'Z' ? x + 32 : x) != (y >= 'A' && y <= 'Z' ? y + 32 : y))
            return false;
    }
    return true;
}

std::string Quoted(std::string_view text) {
    std::string quoted = "`";
    quoted += text;
    quoted += '`';
    return quoted;
}

// The text from the start of `from` to the end of `to`, two slices of one line.
std::string_view Through(std::string_view from, std::string_view to) {
    return {from.data(), static_cast<std::size_t>(to.data() + to.size() - from.data())};
}

struct Header {
    Kind kind = Kind::Sub;
    BlockKind blockKind = BlockKind::Sub;
    std::string_view keywords;  // modifiers and keywords: "Private Property Get"
    std::string_view name;
};

std::optional<BlockKind> HeaderKeyword(std::string_view word) {
    if (WordIs(word, "sub")) return BlockKind::Sub;
    if (WordIs(word, "function")) return BlockKind::Function;
    if (WordIs(word, "property")) return BlockKind::PropertyGet;
    if (WordIs(word, "type")) return BlockKind::Type;
    if (WordIs(word, "enum")) return BlockKind::Enum;
    return std::nullopt;
}

Kind KindOf(BlockKind kind) {
    switch (kind) {
        case BlockKind::Sub:
            return Kind::Sub;
        case BlockKind::Function:
            return Kind::Function;
        case BlockKind::Type:
            return Kind::Type;
        case BlockKind::Enum:
            return Kind::Enum;
        default:
            return Kind::Property;
    }
}

// A procedure, `Type` or `Enum` header after any scope and `Static` modifiers. A header names
// what it declares, so a `Type` member called `Type` or `sub` (`Sub As Long`) is none.
std::optional<Header> ParseHeader(std::string_view text) {
    const std::string_view start = text;
    std::string_view word = FirstWord(text);
    while (WordIs(word, "public") || WordIs(word, "private") || WordIs(word, "friend") ||
           WordIs(word, "static") || WordIs(word, "global")) {
        text = AfterWord(text, word);
        word = FirstWord(text);
    }
    auto blockKind = HeaderKeyword(word);
    if (!blockKind) return std::nullopt;
    if (*blockKind == BlockKind::PropertyGet) {
        const std::string_view accessor = FirstWord(AfterWord(text, word));
        if (WordIs(accessor, "let")) {
            blockKind = BlockKind::PropertyLet;
        } else if (WordIs(accessor, "set")) {
            blockKind = BlockKind::PropertySet;
        } else if (!WordIs(accessor, "get")) {
            return std::nullopt;
        }
        text = AfterWord(text, word);
        word = accessor;
    }
    const std::string_view name = FirstWord(AfterWord(text, word));
    if (name.empty() || name.front() == '#' || WordIs(name, "as")) return std::nullopt;
    return Header{KindOf(*blockKind), *blockKind, Through(start, word), name};
}

BlockKind BlockKindOf(Kind kind) {
    static constexpr BlockKind kKinds[] = {
        BlockKind::If,       BlockKind::For,         BlockKind::ForEach, BlockKind::Do,
        BlockKind::While,    BlockKind::Select,      BlockKind::With,    BlockKind::Sub,
        BlockKind::Function, BlockKind::PropertyGet, BlockKind::Type,    BlockKind::Enum,
    };
    return kKinds[static_cast<std::size_t>(kind)];
}

// The text after the `Then` of an `If` or `ElseIf` statement, or nullopt without one.
std::optional<std::string_view> AfterThen(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const char c = text[i];
        if (c == '"') {
            const auto close = text.find('"', i + 1);
            if (close == std::string_view::npos) return std::nullopt;
            i = close + 1;
            continue;
        }
        const std::string_view word = FirstWord(text.substr(i));
        if (word.empty()) {
            ++i;
            continue;
        }
        const bool standalone = i == 0 || text[i - 1] != '.';
        if (standalone && WordIs(word, "then")) return TrimBlanks(text.substr(i + word.size()));
        i += word.size();
    }
    return std::nullopt;
}

struct Entry {
    Kind kind = Kind::If;
    bool caseSeen = false;
    std::int32_t line = 0;  // 0-based physical line of the opener
    std::int32_t indent = 0;
    std::int32_t parent = -1;
    std::int32_t elseLine = -1;
    std::int32_t block = -1;  // in the block tree, when one is built
    std::string variable;     // of a `For`, as written
};

struct Conditional {
    std::int32_t start = -1;      // the stack at the `#If`
    std::int32_t firstEnd = -2;   // the stack at the end of the first branch; -2 while in it
    std::int32_t ifLine = 0;      // 0-based
    std::int32_t branchLine = 0;  // where the current branch began
    std::string_view branchWord;  // its directive
    std::int32_t block = -1;      // in the block tree, when one is built
};

constexpr std::int32_t kInFirstBranch = -2;

struct PendingHint {
    std::size_t finding;
    std::int32_t opener;
    std::int32_t noticed;
};

class Checker {
  public:
    Checker(std::int32_t firstLine, bool buildTree) : firstLine_(firstLine), tree_(buildTree) {}

    void Line(const LogicalLine& line) {
        current_ = &line;
        line_ = line.firstLine;
        indent_ = -1;  // measured when a block opens or a `Next` needs it
        singleLine_ = false;
        ForEachStatement(line.text, [&](const Statement& statement) {
            std::string_view text = statement.text;
            if (statement.first) {
                text = SkipLineNumber(text);
                if (statement.colon && IsLabel(text)) return;
            }
            Process(text, statement.last);
        });
    }

    BlockTree Finish(std::string_view code, std::int32_t endLine) {
        line_ = endLine;
        current_ = nullptr;
        CloseAll(endLine);
        for (auto it = conditionals_.rbegin(); it != conditionals_.rend(); ++it) {
            CutAt(it->block, endLine);
            Report(
                BlockRule::UnclosedBlock, it->ifLine,
                Quoted("#If") + " at line " + Number(it->ifLine) + " has no " + Quoted("#End If"));
        }
        AddHints(code);
        std::stable_sort(
            findings_.begin(), findings_.end(),
            [](const BlockFinding& a, const BlockFinding& b) { return a.line < b.line; });
        // A block left open before an `#If` is met again in every branch: report it once.
        findings_.erase(std::unique(findings_.begin(), findings_.end(),
                                    [](const BlockFinding& a, const BlockFinding& b) {
                                        return a.line == b.line && a.rule == b.rule &&
                                               a.message == b.message;
                                    }),
                        findings_.end());
        BlockTree tree;
        tree.findings = std::move(findings_);
        tree.blocks = std::move(blocks_);
        LinkChildren(tree);
        return tree;
    }

  private:
    // ---- statements ----

    // A statement, and what follows `Then` or `Else` in it, in a loop rather than by recursion:
    // a line of thousands of single-line `If`s must not exhaust the stack.
    void Process(std::string_view text, bool last) {
        while (!text.empty()) {
            continued_ = {};
            ProcessOne(text, last);
            text = continued_;
            last = continuedLast_;
        }
    }

    void Continue(std::string_view text, bool last) {
        continued_ = text;
        continuedLast_ = last;
    }

    void ProcessOne(std::string_view text, bool last) {
        const std::string_view word = FirstWord(text);
        if (word.empty()) return;
        statement_ = text;
        if (word.front() == '#') {
            Directive(word, AfterWord(text, word));
            return;
        }
        if (InDeclarationBlock()) {
            DeclarationBlockMember(word, text);
            return;
        }
        if (WordIs(word, "case")) {
            Case(word);
            return;
        }
        if (!WordIs(word, "end")) CheckCaseSeen();
        Keyword(word, AfterWord(text, word), text, last);
    }

    void Keyword(std::string_view word, std::string_view rest, std::string_view text, bool last) {
        switch (word.size()) {
            case 2:
                if (WordIs(word, "if")) return If(word, rest, last);
                if (WordIs(word, "do")) return Open(Kind::Do, word);
                break;
            case 3:
                if (WordIs(word, "for")) return For(word, rest);
                if (WordIs(word, "end")) return End(word, rest);
                if (WordIs(word, "sub")) return Declaration(text);
                break;
            case 4:
                if (WordIs(word, "next")) return Next(word, rest);
                if (WordIs(word, "loop")) return Close(Kind::Do, "Loop", word);
                if (WordIs(word, "wend")) return Close(Kind::While, "Wend", word);
                if (WordIs(word, "with")) return Open(Kind::With, word);
                if (WordIs(word, "else")) return Else(word, rest, last);
                if (WordIs(word, "type") || WordIs(word, "enum")) return Declaration(text);
                break;
            case 5:
                if (WordIs(word, "endif")) return Close(Kind::If, "End If", word);
                if (WordIs(word, "while")) return Open(Kind::While, word);
                break;
            case 6:
                if (WordIs(word, "select")) return Select(word, rest);
                if (WordIs(word, "elseif")) return ElseIf(word, rest);
                if (WordIs(word, "public") || WordIs(word, "static") || WordIs(word, "friend") ||
                    WordIs(word, "global")) {
                    return Declaration(text);
                }
                break;
            case 7:
                if (WordIs(word, "private")) return Declaration(text);
                break;
            case 8:
                if (WordIs(word, "function") || WordIs(word, "property")) return Declaration(text);
                break;
            default:
                break;
        }
    }

    void Declaration(std::string_view text) {
        if (const auto header = ParseHeader(text)) OpenHeader(*header);
    }

    void Select(std::string_view word, std::string_view rest) {
        const std::string_view next = FirstWord(rest);
        Open(Kind::Select, WordIs(next, "case") ? Through(word, next) : word);
    }

    void If(std::string_view word, std::string_view rest, bool last) {
        const auto afterThen = AfterThen(rest);
        if (!afterThen) return;  // no `Then`: not a block, and not ours to judge
        if (afterThen->empty() && last && !singleLine_) {
            Open(Kind::If, word);
            return;
        }
        // Anything after `Then` on the same line makes a single-line `If`, however it goes on.
        singleLine_ = true;
        if (!afterThen->empty()) Continue(*afterThen, last);
    }

    void ElseIf(std::string_view word, std::string_view rest) {
        if (singleLine_) return;
        if (const auto at = Branch(Kind::If, "ElseIf", word)) {
            const Entry& entry = nodes_[static_cast<std::size_t>(*at)];
            if (entry.elseLine >= 0) LateBranch("ElseIf", entry);
        }
        const auto afterThen = AfterThen(rest);
        if (afterThen && !afterThen->empty()) Continue(*afterThen, true);
    }

    void Else(std::string_view word, std::string_view rest, bool last) {
        if (!singleLine_) {
            if (const auto at = Branch(Kind::If, "Else", word)) {
                Entry entry = nodes_[static_cast<std::size_t>(*at)];
                if (entry.elseLine >= 0) {
                    LateBranch("Else", entry);
                } else {
                    entry.elseLine = line_;
                    Replace(std::move(entry));
                }
            }
        }
        // `Else If c Then` opens a new `If`, unlike `ElseIf`.
        if (!rest.empty()) Continue(rest, last);
    }

    void Case(std::string_view word) {
        if (const auto at = Branch(Kind::Select, "Case", word)) {
            Entry entry = nodes_[static_cast<std::size_t>(*at)];
            if (!entry.caseSeen) {
                entry.caseSeen = true;
                Replace(std::move(entry));
            }
        }
    }

    // Nothing but `Case` may follow `Select Case`.
    void CheckCaseSeen() {
        if (top_ < 0) return;
        const Entry& open = nodes_[static_cast<std::size_t>(top_)];
        if (open.kind != Kind::Select || open.caseSeen) return;
        Entry entry = open;
        Report(BlockRule::StatementBeforeCase, line_,
               "statement at line " + Number(line_) + " comes before the first " + Quoted("Case") +
                   " of " + Quoted("Select Case") + " at line " + Number(entry.line),
               entry.line, Quoted("Select Case") + " opened here");
        entry.caseSeen = true;
        Replace(std::move(entry));
    }

    void For(std::string_view word, std::string_view rest) {
        std::string_view variable = FirstWord(rest);
        Kind kind = Kind::For;
        std::string_view keywords = word;
        if (WordIs(variable, "each")) {
            kind = Kind::ForEach;
            keywords = Through(word, variable);
            variable = FirstWord(AfterWord(rest, variable));
        }
        Open(kind, keywords, variable);
    }

    // `Next i, j` closes two loops; the second one's closer is its variable.
    void Next(std::string_view word, std::string_view rest) {
        rest = TrimBlanks(rest);
        closer_ = SpanOf(word);
        if (rest.empty()) {
            NextOne({});
            return;
        }
        while (true) {
            const auto comma = rest.find(',');
            const std::string_view variable = FirstWord(TrimBlanks(rest.substr(0, comma)));
            if (!NextOne(variable) || comma == std::string_view::npos) return;
            rest = rest.substr(comma + 1);
            closer_ = SpanOf(FirstWord(TrimBlanks(rest.substr(0, rest.find(',')))));
        }
    }

    // Closes one loop; false when there was none to close.
    bool NextOne(std::string_view variable) {
        const std::string shown = variable.empty() ? "Next" : "Next " + std::string(variable);
        const std::int32_t loop = Find([](const Entry& e) { return IsLoop(e.kind); }, true);
        if (loop < 0) {
            Report(BlockRule::UnmatchedEnd, line_,
                   Quoted(shown) + " at line " + Number(line_) + " has no " + Quoted("For"));
            return false;
        }
        const Entry& nearest = nodes_[static_cast<std::size_t>(loop)];
        if (variable.empty() || SameName(nearest.variable, variable)) {
            CloseDownTo(loop);
            return true;
        }
        // `Next j` under `For i`: either the `Next i` is missing (the `Next j` lines up with an
        // outer `For j`) or the wrong variable is named.
        const std::int32_t named = FindFrom(
            nearest.parent,
            [&](const Entry& e) { return IsLoop(e.kind) && SameName(e.variable, variable); }, true);
        if (named >= 0 && nodes_[static_cast<std::size_t>(named)].indent == Indent()) {
            CloseDownTo(named);
            return true;
        }
        const std::string opened = Quoted("For " + nearest.variable);
        Report(BlockRule::NextNesting, line_,
               Quoted(shown) + " at line " + Number(line_) + " closes " + opened +
                   " opened at line " + Number(nearest.line),
               nearest.line, opened + " opened here");
        CloseDownTo(loop);
        return true;
    }

    void End(std::string_view end, std::string_view rest) {
        const std::string_view word = FirstWord(rest);
        if (word.empty()) return;  // `End` alone ends the program
        closer_ = SpanOf(Through(end, word));
        if (WordIs(word, "if")) return Close(Kind::If, "End If");
        if (WordIs(word, "select")) return Close(Kind::Select, "End Select");
        if (WordIs(word, "with")) return Close(Kind::With, "End With");
        if (WordIs(word, "sub")) return EndProcedure(Kind::Sub);
        if (WordIs(word, "function")) return EndProcedure(Kind::Function);
        if (WordIs(word, "property")) return EndProcedure(Kind::Property);
        if (WordIs(word, "type")) return EndDeclarationBlock(Kind::Type);
        if (WordIs(word, "enum")) return EndDeclarationBlock(Kind::Enum);
    }

    // Inside `Type` and `Enum` only members are expected; what can end the block is looked at.
    void DeclarationBlockMember(std::string_view word, std::string_view text) {
        if (WordIs(word, "end")) {
            End(word, AfterWord(text, word));
        } else {
            Declaration(text);
        }
    }

    void EndDeclarationBlock(Kind kind) {
        if (top_ >= 0 && IsDeclarationBlock(nodes_[static_cast<std::size_t>(top_)].kind)) {
            const Entry& open = nodes_[static_cast<std::size_t>(top_)];
            if (open.kind != kind) Mismatched(kind, open);
            MarkClosed(top_);
            Pop();
            return;
        }
        Unmatched(CloserName(kind), OpenerName(kind));
    }

    void EndProcedure(Kind kind) {
        const std::int32_t procedure =
            Find([](const Entry& e) { return IsProcedure(e.kind); }, false);
        if (procedure < 0) {
            Unmatched(CloserName(kind), OpenerName(kind));
            return;
        }
        const Entry& open = nodes_[static_cast<std::size_t>(procedure)];
        if (open.kind != kind) Mismatched(kind, open, BlockRule::MismatchedProcedureEnd);
        CloseDownTo(procedure);
    }

    void Mismatched(Kind closer, const Entry& open, BlockRule rule = BlockRule::MismatchedEnd) {
        Report(rule, line_,
               Quoted(CloserName(closer)) + " at line " + Number(line_) + " closes " +
                   Quoted(OpenerName(open.kind)) + " opened at line " + Number(open.line),
               open.line, Quoted(OpenerName(open.kind)) + " opened here");
    }

    // ---- conditional compilation ----

    void Directive(std::string_view word, std::string_view rest) {
        if (WordIs(word, "#if")) {
            const std::int32_t block = NewBlock(BlockKind::ConditionalIf, word, {});
            conditionals_.push_back({top_, kInFirstBranch, line_, line_, "#If", block});
        } else if (WordIs(word, "#elseif") || WordIs(word, "#else")) {
            const std::string_view shown = WordIs(word, "#else") ? "#Else" : "#ElseIf";
            if (conditionals_.empty()) {
                Report(BlockRule::MisplacedBranch, line_,
                       Quoted(shown) + " at line " + Number(line_) + " has no " + Quoted("#If"));
                return;
            }
            Conditional& frame = conditionals_.back();
            EndBranch(frame);
            AddMiddle(frame.block, word);
            top_ = frame.start;
            frame.branchLine = line_;
            frame.branchWord = shown;
        } else if (WordIs(word, "#end") || WordIs(word, "#endif")) {
            if (conditionals_.empty()) {
                Unmatched("#End If", "#If");
                return;
            }
            Conditional& frame = conditionals_.back();
            EndBranch(frame);
            const std::string_view ifWord = FirstWord(rest);
            closer_ = SpanOf(WordIs(ifWord, "if") ? Through(word, ifWord) : word);
            CloseBlock(frame.block);
            top_ = frame.firstEnd;
            conditionals_.pop_back();
        }
    }

    // Every branch must leave the same blocks open as the first one; the first one goes on.
    void EndBranch(Conditional& frame) {
        if (frame.firstEnd == kInFirstBranch) {
            frame.firstEnd = top_;
            return;
        }
        for (std::int32_t at = top_; at >= 0 && at != frame.start;) {
            const Entry& entry = nodes_[static_cast<std::size_t>(at)];
            CutAt(entry.block, line_);
            at = entry.parent;
        }
        if (SameBlocks(top_, frame.firstEnd)) return;
        Report(BlockRule::ConditionalBranches, frame.branchLine,
               "the " + Quoted(frame.branchWord) + " branch at line " + Number(frame.branchLine) +
                   " leaves other blocks open than the " + Quoted("#If") + " branch at line " +
                   Number(frame.ifLine),
               frame.ifLine, Quoted("#If") + " here");
    }

    bool SameBlocks(std::int32_t a, std::int32_t b) const {
        while (a != b) {
            if (a < 0 || b < 0) return false;
            const Entry& x = nodes_[static_cast<std::size_t>(a)];
            const Entry& y = nodes_[static_cast<std::size_t>(b)];
            if (x.kind != y.kind || !SameName(x.variable, y.variable)) return false;
            a = x.parent;
            b = y.parent;
        }
        return true;
    }

    // ---- the stack ----

    bool InDeclarationBlock() const {
        return top_ >= 0 && IsDeclarationBlock(nodes_[static_cast<std::size_t>(top_)].kind);
    }

    void Open(Kind kind, std::string_view keywords, std::string_view variable = {}) {
        Entry entry;
        entry.kind = kind;
        entry.line = line_;
        entry.indent = Indent();
        entry.variable = variable;
        entry.block = NewBlock(BlockKindOf(kind), keywords, {});
        Push(std::move(entry));
    }

    // Procedures, `Type` and `Enum` cannot nest: whatever is open ends before the header.
    void OpenHeader(const Header& header) {
        CloseAll(line_);
        Entry entry;
        entry.kind = header.kind;
        entry.line = line_;
        entry.indent = Indent();
        entry.block = NewBlock(header.blockKind, header.keywords, header.name);
        Push(std::move(entry));
    }

    void Push(Entry entry) {
        entry.parent = top_;
        nodes_.push_back(std::move(entry));
        top_ = static_cast<std::int32_t>(nodes_.size() - 1);
    }

    void Pop() { top_ = nodes_[static_cast<std::size_t>(top_)].parent; }

    void Replace(Entry entry) {
        Pop();
        Push(std::move(entry));
    }

    template <typename Match>
    std::int32_t FindFrom(std::int32_t at, Match&& match, bool withinProcedure) const {
        while (at >= 0) {
            const Entry& entry = nodes_[static_cast<std::size_t>(at)];
            if (match(entry)) return at;
            if (withinProcedure && (IsProcedure(entry.kind) || IsDeclarationBlock(entry.kind)))
                return -1;
            at = entry.parent;
        }
        return -1;
    }

    template <typename Match>
    std::int32_t Find(Match&& match, bool withinProcedure) const {
        return FindFrom(top_, match, withinProcedure);
    }

    // A closing statement: closes the nearest open block of its kind, and reports the blocks
    // inside it that were left open.
    // `word`: the closing keyword, unless `End` already set `closer_`.
    void Close(Kind kind, std::string_view closer, std::string_view word = {}) {
        if (!word.empty()) closer_ = SpanOf(word);
        const std::int32_t at = Find([kind](const Entry& e) { return e.kind == kind; }, true);
        if (at < 0) {
            Unmatched(closer, OpenerName(kind));
            return;
        }
        CloseDownTo(at);
    }

    // A branch statement: the block it belongs to must be the innermost; blocks inside it that
    // were left open are reported. Returns the block's entry.
    std::optional<std::int32_t> Branch(Kind kind, std::string_view branch,
                                       std::string_view keyword) {
        const std::int32_t at = Find([kind](const Entry& e) { return e.kind == kind; }, true);
        if (at < 0) {
            Report(BlockRule::MisplacedBranch, line_,
                   Quoted(branch) + " at line " + Number(line_) + " has no " +
                       Quoted(OpenerName(kind)));
            return std::nullopt;
        }
        ReportOpenAbove(at, line_);
        AddMiddle(nodes_[static_cast<std::size_t>(top_)].block, keyword);
        return top_;
    }

    void LateBranch(std::string_view branch, const Entry& entry) {
        Report(BlockRule::MisplacedBranch, line_,
               Quoted(branch) + " at line " + Number(line_) + " comes after the " + Quoted("Else") +
                   " at line " + Number(entry.elseLine) + " of the " + Quoted("If") + " at line " +
                   Number(entry.line),
               entry.line, Quoted("If") + " opened here");
    }

    void Unmatched(std::string_view closer, std::string_view opener) {
        Report(BlockRule::UnmatchedEnd, line_,
               Quoted(closer) + " at line " + Number(line_) + " has no " + Quoted(opener));
    }

    // Reports every block above `at` as unclosed and pops them; `at` stays on top.
    void ReportOpenAbove(std::int32_t at, std::int32_t noticed) {
        while (top_ != at && top_ >= 0) {
            ReportUnclosed(nodes_[static_cast<std::size_t>(top_)], noticed);
            Pop();
        }
    }

    void CloseDownTo(std::int32_t at) {
        ReportOpenAbove(at, line_);
        MarkClosed(top_);
        Pop();
    }

    void CloseAll(std::int32_t noticed) { ReportOpenAbove(-1, noticed); }

    void ReportUnclosed(const Entry& entry, std::int32_t noticed) {
        CutAt(entry.block, noticed);
        hints_.push_back({findings_.size(), entry.line, noticed});
        Report(BlockRule::UnclosedBlock, entry.line,
               Quoted(OpenerName(entry.kind)) + " at line " + Number(entry.line) + " has no " +
                   Quoted(CloserName(entry.kind)));
    }

    // ---- the block tree ----

    // Where a slice of the current logical line is; only its first physical line when it is
    // continued over several.
    std::int32_t Indent() {
        if (indent_ < 0) indent_ = current_ != nullptr ? IndentOf(current_->text) : 0;
        return indent_;
    }

    // Cheap when no tree is built: the check alone never needs a position.
    Span SpanOf(std::string_view piece) const { return tree_ ? Locate(piece) : Span{}; }

    Span Locate(std::string_view piece) const {
        if (current_ == nullptr) return {};
        const std::string_view text = current_->text;
        if (piece.data() < text.data() || piece.data() + piece.size() > text.data() + text.size())
            return {line_ + firstLine_, 0, 0};
        const auto offset = static_cast<std::size_t>(piece.data() - text.data());
        const PhysicalPosition start = PositionIn(*current_, offset);
        std::size_t length = piece.size();
        if (!piece.empty() && PositionIn(*current_, offset + piece.size() - 1).line != start.line)
            length = FirstWord(piece).size();
        return {start.line + firstLine_, start.column, static_cast<std::int32_t>(length)};
    }

    std::int32_t InnermostBlock() const {
        std::int32_t innermost = top_ >= 0 ? nodes_[static_cast<std::size_t>(top_)].block : -1;
        if (!conditionals_.empty()) innermost = std::max(innermost, conditionals_.back().block);
        return innermost;
    }

    std::int32_t NewBlock(BlockKind kind, std::string_view keywords, std::string_view name) {
        if (!tree_) return -1;
        Block block;
        block.kind = kind;
        block.name = name.empty() ? statement_ : name;
        block.opener = SpanOf(keywords);
        block.nameSpan = name.empty() ? block.opener : SpanOf(name);
        const std::size_t statementEnd =
            static_cast<std::size_t>(statement_.data() - current_->text.data()) +
            std::max<std::size_t>(statement_.size(), 1) - 1;
        block.openerEndLine = PositionIn(*current_, statementEnd).line + firstLine_;
        block.lastLine = block.openerEndLine;
        block.parent = InnermostBlock();
        blocks_.push_back(std::move(block));
        return static_cast<std::int32_t>(blocks_.size() - 1);
    }

    void AddMiddle(std::int32_t block, std::string_view keyword) {
        if (block >= 0) blocks_[static_cast<std::size_t>(block)].middles.push_back(SpanOf(keyword));
    }

    void MarkClosed(std::int32_t entry) {
        CloseBlock(nodes_[static_cast<std::size_t>(entry)].block);
    }

    // A block closed in several `#If` branches keeps the first closer and reaches the last.
    void CloseBlock(std::int32_t at) {
        if (at < 0) return;
        Block& block = blocks_[static_cast<std::size_t>(at)];
        if (!block.closer) block.closer = closer_;
        block.lastLine = std::max(block.lastLine, closer_.line);
    }

    // A block never closed reaches the line before the statement that cut it off.
    void CutAt(std::int32_t at, std::int32_t noticed) {
        if (at < 0) return;
        Block& block = blocks_[static_cast<std::size_t>(at)];
        if (block.closer) return;
        block.lastLine = std::max(block.lastLine, noticed - 1 + firstLine_);
    }

    static void LinkChildren(BlockTree& tree) {
        for (std::size_t i = 0; i < tree.blocks.size(); ++i) {
            const std::int32_t parent = tree.blocks[i].parent;
            const auto index = static_cast<std::int32_t>(i);
            if (parent < 0) {
                tree.roots.push_back(index);
            } else {
                tree.blocks[static_cast<std::size_t>(parent)].children.push_back(index);
            }
        }
    }

    // ---- findings ----

    std::string Number(std::int32_t line) const { return std::to_string(line + firstLine_); }

    void Report(BlockRule rule, std::int32_t line, std::string message, std::int32_t related = -1,
                std::string relatedText = {}) {
        BlockFinding finding;
        finding.rule = rule;
        finding.line = line + firstLine_;
        finding.message = std::move(message);
        if (related >= 0) {
            finding.relatedLine = related + firstLine_;
            finding.relatedText = std::move(relatedText);
        }
        findings_.push_back(std::move(finding));
    }

    void AddHints(std::string_view code) {
        if (hints_.empty()) return;
        const std::vector<std::int32_t> indents = CodeIndentation(code);
        std::int64_t budget = 4 * static_cast<std::int64_t>(indents.size()) + 10000;
        for (const PendingHint& hint : hints_) {
            const auto end = ProbableEnd(indents, hint.opener, hint.noticed, budget);
            if (!end) continue;
            BlockFinding& finding = findings_[hint.finding];
            finding.message += " (probably before line " + Number(*end) + ")";
            finding.relatedLine = *end + firstLine_;
            finding.relatedText = "probably before here";
        }
    }

    // ---- line starts ----

    static std::string_view SkipLineNumber(std::string_view text) {
        std::size_t i = 0;
        while (i < text.size() && text[i] >= '0' && text[i] <= '9')
            ++i;
        if (i == 0 || (i < text.size() && !IsBlank(text[i]))) return text;
        return TrimBlanks(text.substr(i));
    }

    // A word alone before a colon at the start of a line is a label, unless it is a statement.
    static bool IsLabel(std::string_view text) {
        if (text.empty()) return true;  // a line number with a colon
        const std::string_view word = FirstWord(text);
        if (word.size() != text.size() || word.front() == '#') return false;
        static constexpr std::string_view kStatements[] = {"else", "loop",  "next", "wend", "do",
                                                           "end",  "endif", "with", "while"};
        return std::none_of(std::begin(kStatements), std::end(kStatements),
                            [&](std::string_view keyword) { return WordIs(word, keyword); });
    }

    std::int32_t firstLine_;
    bool tree_;
    const LogicalLine* current_ = nullptr;
    std::string_view statement_;  // the statement being read
    std::string_view continued_;  // what remains of it after `Then` or `Else`
    bool continuedLast_ = false;
    Span closer_;  // the closing keywords of the statement being read
    std::vector<Block> blocks_;
    std::int32_t line_ = 0;
    std::int32_t indent_ = 0;
    bool singleLine_ = false;
    std::int32_t top_ = -1;
    std::vector<Entry> nodes_;
    std::vector<Conditional> conditionals_;
    std::vector<BlockFinding> findings_;
    std::vector<PendingHint> hints_;
};

}  // namespace

std::string_view RuleId(BlockRule rule) {
    switch (rule) {
        case BlockRule::UnclosedBlock:
            return "unclosed-block";
        case BlockRule::UnmatchedEnd:
            return "unmatched-end";
        case BlockRule::MisplacedBranch:
            return "misplaced-branch";
        case BlockRule::NextNesting:
            return "next-nesting";
        case BlockRule::MismatchedEnd:
            return "mismatched-end";
        case BlockRule::StatementBeforeCase:
            return "statement-before-case";
        case BlockRule::ConditionalBranches:
            return "conditional-branches";
        case BlockRule::MismatchedProcedureEnd:
            return "mismatched-procedure-end";
    }
    return "unknown";
}

std::string_view RuleDescription(BlockRule rule) {
    switch (rule) {
        case BlockRule::UnclosedBlock:
            return "A block that is still open where its procedure or the module ends";
        case BlockRule::UnmatchedEnd:
            return "A closing statement without the statement that opens its block";
        case BlockRule::MisplacedBranch:
            return "Else, ElseIf, Case, #Else or #ElseIf outside its block, or after Else";
        case BlockRule::NextNesting:
            return "A Next whose variable does not match the innermost open For";
        case BlockRule::MismatchedEnd:
            return "An End statement closing a block of another kind";
        case BlockRule::StatementBeforeCase:
            return "A statement between Select Case and its first Case";
        case BlockRule::ConditionalBranches:
            return "#If branches that leave different blocks open";
        case BlockRule::MismatchedProcedureEnd:
            return "A procedure closed by the end of another kind of procedure, which VB6 "
                   "accepts";
    }
    return "";
}

namespace {

BlockTree Parse(std::string_view code, std::int32_t firstLine, bool buildTree) {
    Checker checker(firstLine, buildTree);
    LineReader reader(code);
    LogicalLine line;
    std::int32_t lines = 0;
    while (reader.Next(line)) {
        checker.Line(line);
        lines = line.lastLine + 1;
    }
    return checker.Finish(code, lines);
}

}  // namespace

bool IsProcedureKind(BlockKind kind) {
    return kind == BlockKind::Sub || kind == BlockKind::Function ||
           kind == BlockKind::PropertyGet || kind == BlockKind::PropertyLet ||
           kind == BlockKind::PropertySet;
}

bool IsWarning(BlockRule rule) {
    return rule == BlockRule::MismatchedProcedureEnd;
}

BlockTree ParseBlocks(std::string_view code, std::int32_t firstLine) {
    return Parse(code, firstLine, true);
}

// The same pass without recording the tree, which `check` does not need.
std::vector<BlockFinding> CheckBlocks(std::string_view code, std::int32_t firstLine) {
    return Parse(code, firstLine, false).findings;
}

}  // namespace arbolet::analysis::vb6
