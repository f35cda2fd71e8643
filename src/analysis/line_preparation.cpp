// Line preparation for the logic-flow builder (see line_preparation.h).
#include "analysis/line_preparation.h"

#include <algorithm>
#include <cmath>
#include <deque>

#include "base/utf8.h"

namespace arbolet::analysis {
namespace {

bool IsCommentLine(std::string_view trimmed) {
    if (!trimmed.empty() && trimmed.front() == '\'') return true;
    return trimmed.size() >= 4 && text::ToLower(trimmed.substr(0, 4)) == "rem ";
}

bool IsConstantKey(std::string_view key) {
    return key.starts_with("const ") || key.find(" const ") != std::string_view::npos;
}

void BlankRange(std::string& s, std::size_t first, std::size_t end) {
    for (std::size_t i = first; i < end && i < s.size(); ++i)
        s[i] = ' ';
}

void ReplaceAllWithBlanks(std::string& s, std::string_view what) {
    for (auto p = s.find(what); p != std::string::npos; p = s.find(what, p + what.size())) {
        BlankRange(s, p, p + what.size());
    }
}

// Blanks every string literal from its opening to its closing quote; an unclosed literal runs
// to the end of the line.
void BlankStringLiterals(std::string& s) {
    for (auto open = s.find('"'); open != std::string::npos; open = s.find('"', open)) {
        auto close = s.find('"', open + 1);
        if (close == std::string::npos) close = s.size() - 1;
        BlankRange(s, open, close + 1);
        open = close + 1;
    }
}

void BlankLeadingLineNumber(std::string& s) {
    if (s.empty() || s.front() < '0' || s.front() > '9') return;
    const auto blank = s.find(' ');
    BlankRange(s, 0, blank == std::string::npos ? s.size() : blank);
}

}  // namespace

std::vector<std::string_view> SplitCodeLines(std::string_view text) {
    std::vector<std::string_view> lines;
    if (text.empty()) return lines;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') continue;
        lines.push_back(text.substr(start, i - start));
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        start = i + 1;
    }
    lines.push_back(text.substr(start));
    return lines;
}

std::string NormaliseBlanks(std::string_view line) {
    std::string out;
    out.reserve(line.size());
    for (char c : line) {
        if (c == '\t') c = ' ';
        if (c == ' ' && !out.empty() && out.back() == ' ') continue;
        out += c;
    }
    return out;
}

std::string MakeKeyText(std::string_view trimmedLine) {
    std::string key = text::ToLower(trimmedLine);
    ReplaceAllWithBlanks(key, "\"\"");
    BlankStringLiterals(key);
    if (const auto comment = key.find('\''); comment != std::string::npos) key.resize(comment);
    BlankLeadingLineNumber(key);
    ReplaceAllWithBlanks(key, ":=");
    return key;
}

namespace {

// The text of the line being visited. A line that later lines were joined onto is held in a deque,
// so that prepending each earlier line of a long continued statement costs only that line's length.
class VisitedLine {
  public:
    void Start(std::string_view line) {
        if (!carrying_) view_ = text::Trim(line);
        while (carrying_ && !joined_.empty() && joined_.front() == ' ')
            joined_.pop_front();
        while (carrying_ && !joined_.empty() && joined_.back() == ' ')
            joined_.pop_back();
    }

    bool IsComment() const {
        std::string head;
        if (carrying_) {
            head.assign(joined_.begin(),
                        joined_.begin() + std::min<std::ptrdiff_t>(4, std::ssize(joined_)));
        } else {
            head = view_.substr(0, 4);
        }
        return IsCommentLine(head);
    }

    // Joins this line onto the earlier one, which ends with "_": the underscore becomes a blank.
    void JoinOnto(std::string_view earlier) {
        if (!carrying_) joined_.assign(view_.begin(), view_.end());
        carrying_ = true;
        joined_.push_front(' ');
        joined_.insert(joined_.begin(), earlier.begin(), earlier.end() - 1);
    }

    std::string Take() {
        std::string result =
            carrying_ ? std::string(joined_.begin(), joined_.end()) : std::string(view_);
        Drop();
        return result;
    }

    void Drop() {
        carrying_ = false;
        joined_.clear();
    }

  private:
    std::string_view view_;
    std::deque<char> joined_;
    bool carrying_ = false;
};

}  // namespace

std::int32_t PrepareLines(std::string_view codeText, bool showConstants, LineArena& arena,
                          clsStack& lineStack) {
    const auto split = SplitCodeLines(codeText);
    std::vector<std::string> lines;
    lines.reserve(split.size());
    for (auto raw : split)
        lines.push_back(NormaliseBlanks(raw));

    const auto highest = static_cast<double>(lines.size()) - 1;
    lineStack.SetStackSize(static_cast<std::int32_t>(std::lround(highest * 0.9)));

    VisitedLine visited;
    for (std::size_t i = lines.size(); i-- > 0;) {
        visited.Start(lines[i]);
        if (visited.IsComment()) {
            visited.Drop();
            continue;
        }
        if (i > 0 && !lines[i - 1].empty() && lines[i - 1].back() == '_') {
            // Bottom up, a statement spread over several lines ends whole on its first line.
            visited.JoinOnto(lines[i - 1]);
            continue;
        }
        std::string trimmed = visited.Take();
        std::string key = MakeKeyText(trimmed);
        if (!showConstants && IsConstantKey(key)) continue;
        if (trimmed.empty()) continue;

        clsLine* line = arena.Make();
        line->LineID = std::to_string(i);
        line->LineContent = std::move(trimmed);
        line->LCaseContent = std::move(key);
        line->SourceIndex = static_cast<std::int32_t>(i);
        lineStack.Push(Variant(static_cast<VbObject*>(line)));
    }
    return static_cast<std::int32_t>(lines.size());
}

}  // namespace arbolet::analysis
