// Indentation of code lines and the probable end of an unclosed block (see vb6_indentation.h).
#include "analysis/vb6_indentation.h"

#include <algorithm>

#include "analysis/vb6_statements.h"

namespace arbolet::analysis::vb6 {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// A line that holds only a label (`Retry:`), perhaps with a comment: labels sit at the left
// margin whatever the nesting, so they say nothing about it.
bool IsLabelOnly(std::string_view trimmed) {
    const std::string_view word = FirstWord(trimmed);
    if (word.empty() || word.size() >= trimmed.size() || trimmed[word.size()] != ':') return false;
    const std::string_view rest = TrimBlanks(trimmed.substr(word.size() + 1));
    return rest.empty() || rest.front() == '\'';
}

bool SaysNothingAboutNesting(std::string_view trimmed) {
    if (trimmed.empty() || trimmed.front() == '\'' || trimmed.front() == '#') return true;
    if (IsDigit(trimmed.front())) return true;
    if (WordIs(FirstWord(trimmed), "rem")) return true;
    return IsLabelOnly(trimmed);
}

}  // namespace

std::int32_t IndentOf(std::string_view line) {
    std::int32_t columns = 0;
    for (char c : line) {
        if (c == ' ') {
            ++columns;
        } else if (c == '\t') {
            columns = (columns / 4 + 1) * 4;
        } else {
            break;
        }
    }
    return columns;
}

std::vector<std::int32_t> CodeIndentation(std::string_view code) {
    std::vector<std::int32_t> indents;
    bool continued = false;
    std::size_t start = 0;
    while (start < code.size()) {
        std::size_t end = start;
        while (end < code.size() && code[end] != '\r' && code[end] != '\n')
            ++end;
        const std::string_view line = code.substr(start, end - start);
        const bool quiet = continued || SaysNothingAboutNesting(TrimBlanks(line));
        indents.push_back(quiet ? -1 : IndentOf(line));
        continued = EndsWithContinuation(line);
        if (end < code.size() && code[end] == '\r' && end + 1 < code.size() &&
            code[end + 1] == '\n')
            ++end;
        start = end + 1;
    }
    return indents;
}

std::optional<std::int32_t> ProbableEnd(const std::vector<std::int32_t>& indents,
                                        std::int32_t opener, std::int32_t noticed,
                                        std::int64_t& budget) {
    const auto count = static_cast<std::int32_t>(indents.size());
    if (opener < 0 || opener >= count || indents[static_cast<std::size_t>(opener)] < 0) {
        return std::nullopt;
    }
    const std::int32_t indent = indents[static_cast<std::size_t>(opener)];
    const std::int32_t last = std::min(noticed, count - 1);
    bool bodySeen = false;
    for (std::int32_t i = opener + 1; i <= last && budget > 0; ++i, --budget) {
        const std::int32_t here = indents[static_cast<std::size_t>(i)];
        if (here < 0) continue;
        if (!bodySeen) {
            // The body must be indented deeper, or indentation tells nothing here.
            if (here <= indent) return std::nullopt;
            bodySeen = true;
            continue;
        }
        if (here <= indent) return i;
    }
    return std::nullopt;
}

}  // namespace arbolet::analysis::vb6
