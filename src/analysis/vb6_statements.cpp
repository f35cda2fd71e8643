// Logical lines and statements of VB6 source (see vb6_statements.h).
#include "analysis/vb6_statements.h"

#include <algorithm>
#include <array>

namespace arbolet::analysis::vb6 {
namespace {

bool IsWordChar(char byte) {
    static constexpr auto kWord = [] {
        std::array<bool, 256> word{};
        for (int c = 'a'; c <= 'z'; ++c)
            word[static_cast<std::size_t>(c)] = word[static_cast<std::size_t>(c - 32)] = true;
        for (int c = '0'; c <= '9'; ++c)
            word[static_cast<std::size_t>(c)] = true;
        word['_'] = true;
        // Bytes of non-ASCII letters, in whatever code page, belong to names.
        for (int c = 0x80; c < 0x100; ++c)
            word[static_cast<std::size_t>(c)] = true;
        return word;
    }();
    return kWord[static_cast<unsigned char>(byte)];
}

}  // namespace

std::string_view LineReader::PhysicalLine() {
    const char* const begin = source_.data() + position_;
    const char* const end = source_.data() + source_.size();
    const char* p = begin;
    while (p < end && *p != '\r' && *p != '\n')
        ++p;
    const std::string_view line(begin, static_cast<std::size_t>(p - begin));
    p += LineEndLength(std::string_view(p, static_cast<std::size_t>(end - p))) - 1;
    position_ = std::min(static_cast<std::size_t>(p - source_.data()) + 1, source_.size());
    ++physical_;
    return line;
}

bool LineReader::Next(LogicalLine& line) {
    if (position_ >= source_.size()) return false;
    line.firstLine = physical_;
    std::string_view physical = PhysicalLine();
    line.joins = {};
    if (!EndsWithContinuation(physical) || position_ >= source_.size()) {
        line.text = physical;
        line.lastLine = physical_ - 1;
        return true;
    }
    // A continued statement: the pieces are joined with the `_` turned into a blank.
    joined_.clear();
    joins_.clear();
    while (EndsWithContinuation(physical) && position_ < source_.size()) {
        const auto underscore = physical.find_last_of('_');
        joined_.append(physical.substr(0, underscore));
        joined_ += ' ';
        joins_.push_back(static_cast<std::uint32_t>(joined_.size()));
        physical = PhysicalLine();
    }
    joined_.append(physical);
    line.text = joined_;
    line.joins = joins_;
    line.lastLine = physical_ - 1;
    return true;
}

PhysicalPosition PositionIn(const LogicalLine& line, std::size_t offset) {
    const auto after = std::upper_bound(line.joins.begin(), line.joins.end(), offset);
    const auto piece = static_cast<std::int32_t>(after - line.joins.begin());
    const std::size_t start = piece == 0 ? 0 : line.joins[static_cast<std::size_t>(piece - 1)];
    return {line.firstLine + piece, static_cast<std::int32_t>(offset - start)};
}

std::size_t LineEndLength(std::string_view rest) {
    if (rest.starts_with("\r\r\n")) return 3;
    if (rest.starts_with("\r\n")) return 2;
    return 1;
}

bool EndsWithContinuation(std::string_view line) {
    std::size_t end = line.size();
    while (end > 0 && IsBlank(line[end - 1]))
        --end;
    if (end == 0 || line[end - 1] != '_') return false;
    return end == 1 || IsBlank(line[end - 2]);
}

std::size_t StatementEnd(std::string_view line, std::size_t from, bool& comment) {
    const char* const begin = line.data();
    const char* const end = begin + line.size();
    for (const char* p = begin + from; p < end; ++p) {
        switch (*p) {
            case '"':
                // A doubled quote inside a string reads as closing and reopening it.
                while (++p < end && *p != '"') {
                }
                if (p == end) return line.size();
                break;
            case '\'':
                comment = true;
                return static_cast<std::size_t>(p - begin);
            case ':':
                if (p + 1 < end && p[1] == '=') {
                    ++p;
                    break;
                }
                return static_cast<std::size_t>(p - begin);
            default:
                break;
        }
    }
    return line.size();
}

std::string_view FirstWord(std::string_view text) {
    std::size_t end = 0;
    if (!text.empty() && text[0] == '#') end = 1;
    while (end < text.size() && IsWordChar(text[end]))
        ++end;
    return text.substr(0, end);
}

std::string_view AfterWord(std::string_view text, std::string_view word) {
    text.remove_prefix(word.size());
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

bool WordIs(std::string_view word, std::string_view lowerKeyword) {
    if (word.size() != lowerKeyword.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        const auto c = static_cast<unsigned char>(word[i]);
        if ((c >= 'A' && c <= 'Z' ? c + 32 : c) != static_cast<unsigned char>(lowerKeyword[i]))
            return false;
    }
    return true;
}

}  // namespace arbolet::analysis::vb6
