// Line preparation for the logic-flow builder (see line_preparation.h).
#include "analysis/line_preparation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <deque>
#include <memory>

#include "base/utf8.h"

namespace arbolet::analysis {
namespace {

bool IsCommentLine(std::string_view trimmed) {
    if (!trimmed.empty() && trimmed.front() == '\'') return true;
    return trimmed.size() >= 4 && (trimmed[0] | 0x20) == 'r' && (trimmed[1] | 0x20) == 'e' &&
           (trimmed[2] | 0x20) == 'm' && trimmed[3] == ' ';
}

bool IsConstantKey(std::string_view key) {
    return key.starts_with("const ") || key.find(" const ") != std::string_view::npos;
}

// The passes below work in place on a line's bytes, so that no line needs a buffer of its own.
struct MutableText {
    char* data;
    std::size_t size;

    std::size_t Find(char c, std::size_t from = 0) const {
        if (from >= size) return std::string::npos;
        const void* found = std::memchr(data + from, c, size - from);
        return found ? static_cast<std::size_t>(static_cast<const char*>(found) - data)
                     : std::string::npos;
    }
    void Blank(std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end && i < size; ++i)
            data[i] = ' ';
    }
};

// Every non-overlapping occurrence of the two characters, from the left, becomes two blanks.
void BlankPairs(MutableText text, char first, char second) {
    for (auto i = text.Find(first); i != std::string::npos && i + 1 < text.size;
         i = text.Find(first, i)) {
        if (text.data[i + 1] == second) {
            text.Blank(i, i + 2);
            i += 2;
        } else {
            ++i;
        }
    }
}

// Blanks every string literal from its opening to its closing quote; an unclosed literal runs
// to the end of the line.
void BlankStringLiterals(MutableText text) {
    for (auto open = text.Find('"'); open != std::string::npos; open = text.Find('"', open)) {
        auto close = text.Find('"', open + 1);
        if (close == std::string::npos) close = text.size - 1;
        text.Blank(open, close + 1);
        open = close + 1;
    }
}

void BlankLeadingLineNumber(MutableText text) {
    if (text.size == 0 || text.data[0] < '0' || text.data[0] > '9') return;
    const auto blank = text.Find(' ');
    text.Blank(0, blank == std::string::npos ? text.size : blank);
}

// Which of the characters that later passes look for occur in a line.
struct KeyCharacters {
    bool quote = false;
    bool apostrophe = false;
    bool colon = false;
};

// Lower-cases the line in place and notes the characters the other passes need, so that a line
// without quotes or colons skips those passes.
KeyCharacters LowerCase(MutableText text) {
    KeyCharacters found;
    bool ascii = true;
    for (std::size_t i = 0; i < text.size; ++i) {
        const auto c = static_cast<unsigned char>(text.data[i]);
        if (c >= 'A' && c <= 'Z') text.data[i] = static_cast<char>(c + 32);
        found.quote |= c == '"';
        found.apostrophe |= c == '\'';
        found.colon |= c == ':';
        ascii &= c < 0x80;
    }
    if (!ascii) {
        const std::string lowered = text::ToLower(std::string_view(text.data, text.size));
        std::copy(lowered.begin(), lowered.end(), text.data);
    }
    return found;
}

}  // namespace

// Builds the key text in place over a copy of the trimmed line; returns its length (shorter than
// the line when a trailing comment is cut off).
std::size_t MakeKeyTextInPlace(char* data, std::size_t length) {
    MutableText key{data, length};
    const KeyCharacters found = LowerCase(key);
    if (found.quote) {
        BlankPairs(key, '"', '"');
        BlankStringLiterals(key);
    }
    if (found.apostrophe) {
        if (const auto comment = key.Find('\''); comment != std::string::npos) key.size = comment;
    }
    BlankLeadingLineNumber(key);
    if (found.colon) BlankPairs(key, ':', '=');
    return key.size;
}

std::string MakeKeyText(std::string_view trimmedLine) {
    std::string key(trimmedLine);
    key.resize(MakeKeyTextInPlace(key.data(), key.size()));
    return key;
}

namespace {

struct Span {
    std::size_t offset;
    std::size_t length;
};

// Every line of the text with blanks normalised, in one buffer, and where each line lies in it.
struct NormalisedLines {
    std::string buffer;
    std::vector<Span> spans;
    // Where the buffer lives once the arena has taken it.
    const std::string* kept = &buffer;

    std::string_view Line(std::size_t i) const {
        return std::string_view(*kept).substr(spans[i].offset, spans[i].length);
    }
};

// Splits at CRLF, LF or a lone CR, turns tabs into blanks and collapses runs of blanks, in one
// pass.
NormalisedLines Normalise(std::string_view codeText) {
    enum ByteClass : std::uint8_t { kOther, kBlank, kReturn, kLineFeed };
    static constexpr auto kClasses = [] {
        std::array<std::uint8_t, 256> classes{};
        classes[' '] = classes['\t'] = kBlank;
        classes['\r'] = kReturn;
        classes['\n'] = kLineFeed;
        return classes;
    }();

    NormalisedLines lines;
    std::string& buffer = lines.buffer;
    buffer.resize(codeText.size());
    char* const begin = buffer.data();
    char* out = begin;
    char* lineStart = begin;
    const auto endLine = [&] {
        lines.spans.push_back({static_cast<std::size_t>(lineStart - begin),
                               static_cast<std::size_t>(out - lineStart)});
        lineStart = out;
    };
    const char* in = codeText.data();
    const char* const end = in + codeText.size();
    while (in < end) {
        const char c = *in++;
        switch (kClasses[static_cast<unsigned char>(c)]) {
            case kOther:
                *out++ = c;
                break;
            case kBlank:
                if (out == lineStart || out[-1] != ' ') *out++ = ' ';
                break;
            case kReturn:
                endLine();
                if (in < end && *in == '\n') ++in;
                break;
            default:
                endLine();
                break;
        }
    }
    if (!codeText.empty()) endLine();
    buffer.resize(static_cast<std::size_t>(out - begin));
    return lines;
}

// The line being visited, as a slice of the normalised buffer. A line that later lines were joined
// onto is held in a deque instead, so that prepending each earlier line of a long continued
// statement costs only that line's length.
class VisitedLine {
  public:
    void Start(const NormalisedLines& lines, std::size_t i) {
        if (!carrying_) {
            const std::string_view line = lines.Line(i);
            view_ = text::Trim(line);
            const auto skipped = static_cast<std::size_t>(view_.data() - line.data());
            slice_ = {lines.spans[i].offset + (view_.empty() ? 0 : skipped), view_.size()};
        }
        while (carrying_ && !joined_.empty() && joined_.front() == ' ')
            joined_.pop_front();
        while (carrying_ && !joined_.empty() && joined_.back() == ' ')
            joined_.pop_back();
    }

    bool IsComment() const {
        std::string head;
        if (carrying_) {
            const auto n = std::min<std::ptrdiff_t>(4, std::ssize(joined_));
            head.assign(joined_.begin(), joined_.begin() + n);
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

    bool IsJoined() const { return carrying_; }
    bool IsEmpty() const { return carrying_ ? joined_.empty() : view_.empty(); }
    Span Slice() const { return slice_; }
    std::string TakeJoined() {
        std::string text(joined_.begin(), joined_.end());
        Drop();
        return text;
    }
    void Drop() {
        carrying_ = false;
        joined_.clear();
    }

  private:
    std::string_view view_;
    Span slice_{0, 0};
    std::deque<char> joined_;
    bool carrying_ = false;
};

// The display and key texts of one prepared line.
struct LineTexts {
    SharedText content;
    SharedText key;
};

LineTexts TextsOfJoined(LineArena& arena, std::string joined) {
    const std::string& content = arena.Keep(std::move(joined));
    const std::string& key = arena.Keep(MakeKeyText(content));
    return {SharedText::Borrowed(content.data(), content.size()),
            SharedText::Borrowed(key.data(), key.size())};
}

// The key text is written over the line's own bytes in the key buffer, which starts as a copy of
// the normalised buffer: both texts keep the same offsets.
LineTexts TextsOfSlice(const std::string& lines, std::string& keys, Span slice) {
    const std::size_t keyLength = MakeKeyTextInPlace(keys.data() + slice.offset, slice.length);
    return {SharedText::Borrowed(lines.data() + slice.offset, slice.length),
            SharedText::Borrowed(keys.data() + slice.offset, keyLength)};
}

}  // namespace

std::int32_t PrepareLines(std::string_view codeText, bool showConstants, LineArena& arena,
                          clsStack& lineStack) {
    NormalisedLines lines = Normalise(codeText);
    // Both buffers move into the arena, which keeps their bytes in place for the lines' lifetime.
    const std::string& content = arena.Keep(std::move(lines.buffer));
    std::string& keys = arena.Keep(content);
    lines.kept = &content;
    const std::size_t count = lines.spans.size();

    const auto highest = static_cast<double>(count) - 1;
    lineStack.SetStackSize(static_cast<std::int32_t>(std::lround(highest * 0.9)));

    VisitedLine visited;
    for (std::size_t i = count; i-- > 0;) {
        visited.Start(lines, i);
        if (visited.IsComment()) {
            visited.Drop();
            continue;
        }
        const std::string_view earlier = i > 0 ? lines.Line(i - 1) : std::string_view{};
        if (!earlier.empty() && earlier.back() == '_') {
            // Bottom up, a statement spread over several lines ends whole on its first line.
            visited.JoinOnto(earlier);
            continue;
        }
        const bool empty = visited.IsEmpty();
        LineTexts texts = visited.IsJoined() ? TextsOfJoined(arena, visited.TakeJoined())
                                             : TextsOfSlice(content, keys, visited.Slice());
        if (empty || (!showConstants && IsConstantKey(texts.key.view()))) continue;

        clsLine* line = arena.Make();
        line->LineID = std::to_string(i);
        line->LineContent = std::move(texts.content);
        line->LCaseContent = std::move(texts.key);
        line->SourceIndex = static_cast<std::int32_t>(i);
        lineStack.Push(Variant(static_cast<VbObject*>(line)));
    }
    return static_cast<std::int32_t>(count);
}

}  // namespace arbolet::analysis
