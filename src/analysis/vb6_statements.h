// Splitting VB6 source into logical lines and statements, as the VB6 compiler reads them.
//
// A line that ends with a blank and `_` continues on the next line (a name ending in `_` does
// not); statements are separated by colons outside strings, a named argument's `:=` aside; `'`
// and `Rem` start a comment that runs to the end of the logical line. Works on bytes of any
// ASCII-compatible code page, so files need not be decoded first.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace arbolet::analysis::vb6 {

// One logical line: physical lines joined at continuations.
struct LogicalLine {
    std::string_view text;       // a slice of the source, or of a joined copy
    std::int32_t firstLine = 0;  // 0-based physical line of its start
    std::int32_t lastLine = 0;   // 0-based physical line of its end
    // Joined lines: where each physical line after the first begins in `text` (it begins at
    // column 0 of its physical line; the first one's `_` became the blank before it). Valid
    // until the next line is read.
    std::span<const std::uint32_t> joins;
};

struct PhysicalPosition {
    std::int32_t line = 0;    // 0-based physical line
    std::int32_t column = 0;  // byte offset in it
};

// The physical line and column of a byte offset into a logical line's text.
PhysicalPosition PositionIn(const LogicalLine& line, std::size_t offset);

// The length of the line end at the start of `rest`: CR CR LF (left by a double conversion) and
// CRLF are one line end each, like LF and a lone CR.
std::size_t LineEndLength(std::string_view rest);

// Reads logical lines in order. Line breaks are CRLF, LF, a lone CR, or CR CR LF.
class LineReader {
  public:
    explicit LineReader(std::string_view source) : source_(source) {}

    // The next logical line; false at the end of the source.
    bool Next(LogicalLine& line);

  private:
    std::string_view PhysicalLine();

    std::string_view source_;
    std::size_t position_ = 0;
    std::int32_t physical_ = 0;
    std::string joined_;
    std::vector<std::uint32_t> joins_;
};

// Whether a physical line ends with a continuation: a `_` after a blank (or alone), then only
// blanks.
bool EndsWithContinuation(std::string_view physicalLine);

struct Statement {
    std::string_view text;  // trimmed, without its separating colon or trailing comment
    bool first = false;     // the first statement of its logical line
    bool last = false;      // nothing but a comment follows it on the logical line
    bool colon = false;     // ended by a statement-separating colon
};

// Visits each statement of a logical line in order; `visit(const Statement&)`.
template <typename Visit>
void ForEachStatement(std::string_view line, Visit&& visit);

// Letters, digits and `_`; bytes of non-ASCII letters, in whatever code page, belong to names.
inline constexpr auto kWordChars = [] {
    std::array<bool, 256> word{};
    for (int c = 'a'; c <= 'z'; ++c)
        word[static_cast<std::size_t>(c)] = word[static_cast<std::size_t>(c - 32)] = true;
    for (int c = '0'; c <= '9'; ++c)
        word[static_cast<std::size_t>(c)] = true;
    word['_'] = true;
    for (int c = 0x80; c < 0x100; ++c)
        word[static_cast<std::size_t>(c)] = true;
    return word;
}();

inline bool IsWordChar(char byte) {
    return kWordChars[static_cast<unsigned char>(byte)];
}

// The first word of a text (letters, digits and `_`, or a `#` directive name), and the text
// after it with leading blanks skipped. Inline: the checker asks for words of every statement.
inline std::string_view FirstWord(std::string_view text) {
    std::size_t end = 0;
    if (!text.empty() && text[0] == '#') end = 1;
    while (end < text.size() && IsWordChar(text[end]))
        ++end;
    return text.substr(0, end);
}
std::string_view AfterWord(std::string_view text, std::string_view word);

// Whether the word, compared without regard to ASCII case, is the lower-case keyword.
inline bool WordIs(std::string_view word, std::string_view lowerKeyword) {
    if (word.size() != lowerKeyword.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        const auto c = static_cast<unsigned char>(word[i]);
        if ((c >= 'A' && c <= 'Z' ? c + 32 : c) != static_cast<unsigned char>(lowerKeyword[i]))
            return false;
    }
    return true;
}

inline bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

inline std::string_view TrimBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// Where the statement starting at `from` ends: at a separating colon, a comment or the end.
// Strings are skipped; `commentAt` is set when a `'` comment ends it.
std::size_t StatementEnd(std::string_view line, std::size_t from, bool& commentAt);

template <typename Visit>
void ForEachStatement(std::string_view line, Visit&& visit) {
    std::size_t position = 0;
    bool first = true;
    while (true) {
        while (position < line.size() && IsBlank(line[position]))
            ++position;
        if (position >= line.size() || line[position] == '\'') return;
        const std::string_view rest = line.substr(position);
        if (WordIs(FirstWord(rest), "rem")) return;
        bool comment = false;
        const std::size_t end = StatementEnd(line, position, comment);
        Statement statement;
        statement.text = TrimBlanks(line.substr(position, end - position));
        statement.first = first;
        statement.colon = !comment && end < line.size();
        statement.last = !statement.colon;
        visit(statement);
        if (!statement.colon) return;
        position = end + 1;
        first = false;
    }
}

}  // namespace arbolet::analysis::vb6
