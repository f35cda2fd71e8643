// Procedure metrics over the block tree and one pass over the statements (see vb6_metrics.h).
#include "analysis/vb6_metrics.h"

#include <algorithm>

#include "analysis/vb6_statements.h"

namespace arbolet::analysis::vb6 {
namespace {

// Visits the standalone words of a statement outside strings, `visit(word)` returning false to
// stop. A word after a `.` is a member (`x.If`) and not visited.
template <typename Visit>
void ForEachWord(std::string_view text, Visit&& visit) {
    std::size_t i = 0;
    while (i < text.size()) {
        if (text[i] == '"') {
            const auto close = text.find('"', i + 1);
            if (close == std::string_view::npos) return;
            i = close + 1;
            continue;
        }
        const std::string_view word = FirstWord(text.substr(i));
        if (word.empty() || word == "#") {
            ++i;
            continue;
        }
        const bool member = i > 0 && text[i - 1] == '.';
        if (!member && !visit(word)) return;
        i += word.size();
    }
}

// `And` and `Or` in a condition, up to its `Then` when it has one.
std::int32_t Connectives(std::string_view condition) {
    std::int32_t count = 0;
    ForEachWord(condition, [&](std::string_view word) {
        if (WordIs(word, "then")) return false;
        if (WordIs(word, "and") || WordIs(word, "or")) ++count;
        return true;
    });
    return count;
}

// The text after the `Then` of a condition, empty without one.
std::string_view AfterThen(std::string_view text) {
    std::string_view after;
    ForEachWord(text, [&](std::string_view word) {
        if (!WordIs(word, "then")) return true;
        after = TrimBlanks(
            text.substr(static_cast<std::size_t>(word.data() + word.size() - text.data())));
        return false;
    });
    return after;
}

std::string_view SkipLineNumber(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9')
        ++i;
    if (i == 0 || (i < text.size() && !IsBlank(text[i]))) return text;
    return TrimBlanks(text.substr(i));
}

std::int32_t Decisions(std::string_view text, int depth);

// What follows `Then` on a single-line `If`: statements, and after `Else` more of them.
std::int32_t SingleLineRest(std::string_view rest, int depth) {
    std::int32_t count = Decisions(rest, depth + 1);
    // `Else` after a nested `If` belongs to that `If`, which has counted it.
    if (WordIs(FirstWord(rest), "if")) return count;
    ForEachWord(rest, [&](std::string_view word) {
        if (WordIs(word, "else")) {
            const auto at = static_cast<std::size_t>(word.data() + word.size() - rest.data());
            count += Decisions(TrimBlanks(rest.substr(at)), depth + 1);
            return false;
        }
        return true;
    });
    return count;
}

std::int32_t OnError(std::string_view rest) {
    std::string_view word = FirstWord(rest);
    if (WordIs(word, "local")) {
        rest = AfterWord(rest, word);
        word = FirstWord(rest);
    }
    if (!WordIs(word, "error")) return 0;
    rest = AfterWord(rest, word);
    word = FirstWord(rest);
    if (!WordIs(word, "goto")) return 0;
    const std::string_view target = TrimBlanks(AfterWord(rest, word));
    return target.empty() || target == "0" || target == "-1" ? 0 : 1;
}

// Single-line `If`s nest; past a small depth the rest of the line adds nothing, so that a line of
// thousands of `If`s stays linear.
constexpr int kMaxSingleLineDepth = 16;

std::int32_t Decisions(std::string_view text, int depth) {
    if (depth > kMaxSingleLineDepth) return 0;
    const std::string_view word = FirstWord(text);
    if (word.empty()) return 0;
    const std::string_view rest = AfterWord(text, word);
    if (WordIs(word, "if") || WordIs(word, "elseif")) {
        std::int32_t count = 1 + Connectives(rest);
        const std::string_view after = AfterThen(rest);
        if (!after.empty()) count += SingleLineRest(after, depth);
        return count;
    }
    if (WordIs(word, "else")) return Decisions(rest, depth + 1);
    if (WordIs(word, "for")) return 1;
    if (WordIs(word, "while")) return 1 + Connectives(rest);
    if (WordIs(word, "do") || WordIs(word, "loop")) {
        const std::string_view kind = FirstWord(rest);
        const std::int32_t loop = WordIs(word, "do") ? 1 : 0;
        if (WordIs(kind, "while") || WordIs(kind, "until"))
            return loop + Connectives(AfterWord(rest, kind));
        return loop;
    }
    if (WordIs(word, "case")) return WordIs(FirstWord(rest), "else") ? 0 : 1;
    if (WordIs(word, "on")) return OnError(rest);
    return 0;
}

// Which procedure each line belongs to: the innermost one whose lines cover it. Procedure
// ranges nest (a header repeated in an `#If` branch lies inside the first one).
class ProcedureCursor {
  public:
    explicit ProcedureCursor(const std::vector<ProcedureMetrics>& procedures)
        : procedures_(procedures) {}

    // The procedure covering `line`, or -1; lines come in increasing order.
    std::int32_t At(std::int32_t line) {
        while (next_ < procedures_.size() && procedures_[next_].line <= line) {
            Drop(line);
            open_.push_back(static_cast<std::int32_t>(next_++));
        }
        Drop(line);
        return open_.empty() ? -1 : open_.back();
    }

  private:
    void Drop(std::int32_t line) {
        while (!open_.empty() &&
               procedures_[static_cast<std::size_t>(open_.back())].lastLine < line)
            open_.pop_back();
    }

    const std::vector<ProcedureMetrics>& procedures_;
    std::size_t next_ = 0;
    std::vector<std::int32_t> open_;
};

// The procedures of the tree with their deepest nesting.
std::vector<ProcedureMetrics> Procedures(const BlockTree& tree) {
    std::vector<ProcedureMetrics> procedures;
    std::vector<std::int32_t> owner(tree.blocks.size(), -1);
    std::vector<std::int32_t> depth(tree.blocks.size(), 0);
    for (std::size_t i = 0; i < tree.blocks.size(); ++i) {
        const Block& block = tree.blocks[i];
        if (IsProcedureKind(block.kind)) {
            owner[i] = static_cast<std::int32_t>(procedures.size());
            ProcedureMetrics metrics;
            metrics.name = block.name;
            metrics.kind = block.kind;
            metrics.line = block.opener.line;
            metrics.lastLine = block.lastLine;
            procedures.push_back(std::move(metrics));
            continue;
        }
        if (block.parent < 0) continue;
        const auto parent = static_cast<std::size_t>(block.parent);
        owner[i] = owner[parent];
        depth[i] = depth[parent] + 1;
        if (owner[i] >= 0) {
            ProcedureMetrics& procedure = procedures[static_cast<std::size_t>(owner[i])];
            procedure.maxNesting = std::max(procedure.maxNesting, depth[i]);
        }
    }
    return procedures;
}

}  // namespace

std::string_view ProcedureKeyword(BlockKind kind) {
    switch (kind) {
        case BlockKind::Sub:
            return "Sub";
        case BlockKind::Function:
            return "Function";
        case BlockKind::PropertyGet:
            return "Property Get";
        case BlockKind::PropertyLet:
            return "Property Let";
        case BlockKind::PropertySet:
            return "Property Set";
        default:
            return "";
    }
}

std::int32_t StatementDecisions(std::string_view statement) {
    return Decisions(SkipLineNumber(TrimBlanks(statement)), 0);
}

std::vector<ProcedureMetrics> ComputeMetrics(std::string_view code, const BlockTree& tree,
                                             std::int32_t firstLine) {
    std::vector<ProcedureMetrics> procedures = Procedures(tree);
    if (procedures.empty()) return procedures;
    ProcedureCursor cursor(procedures);
    LineReader reader(code);
    LogicalLine line;
    while (reader.Next(line)) {
        const std::int32_t at = cursor.At(line.firstLine + firstLine);
        if (at < 0) continue;
        ProcedureMetrics& procedure = procedures[static_cast<std::size_t>(at)];
        bool hasCode = false;
        ForEachStatement(line.text, [&](const Statement& statement) {
            // Member attributes are hidden in the IDE's code window.
            if (statement.first && WordIs(FirstWord(statement.text), "attribute")) return;
            hasCode = true;
            procedure.complexity += StatementDecisions(statement.text);
        });
        if (hasCode) {
            const std::int32_t last = std::min(line.lastLine + firstLine, procedure.lastLine);
            procedure.linesOfCode += last - (line.firstLine + firstLine) + 1;
        }
    }
    return procedures;
}

std::vector<ProcedureMetrics> ComputeMetrics(std::string_view code, std::int32_t firstLine) {
    return ComputeMetrics(code, ParseBlocks(code, firstLine), firstLine);
}

}  // namespace arbolet::analysis::vb6
