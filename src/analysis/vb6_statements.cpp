// Logical lines and statements of VB6 source (see vb6_statements.h).
#include "analysis/vb6_statements.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace arbolet::analysis::vb6 {
namespace {

// The length of a date literal (`#12:00:00 AM#`, `#1/2/2000#`) starting at `p`, or 0. A `#` after a
// name is a type suffix (`x#`) and one before a file number (`Print #1, a: b`) opens none: the
// literal holds only digits, blanks, `/ - : .` and the letters of AM and PM, with a digit.
std::size_t DateLiteralLength(const char* begin, const char* p, const char* end) {
    if (p > begin && IsWordChar(p[-1])) return 0;
    bool digit = false;
    for (const char* q = p + 1; q < end; ++q) {
        const char c = *q;
        if (c == '#') return digit ? static_cast<std::size_t>(q - p) + 1 : 0;
        if (c >= '0' && c <= '9') {
            digit = true;
        } else if (!(c == ' ' || c == '/' || c == '-' || c == ':' || c == '.' || c == 'a' ||
                     c == 'A' || c == 'p' || c == 'P' || c == 'm' || c == 'M')) {
            return 0;
        }
    }
    return 0;
}

}  // namespace

constexpr std::uint64_t kOnes = 0x0101010101010101ull;
constexpr std::uint64_t kHigh = 0x8080808080808080ull;

// The bytes of a word equal to `c` as their high bits: an XOR turns them into zero bytes, and the
// lowest flagged byte is the first match (bytes above a true zero may be flagged too, never
// bytes below it).
constexpr std::uint64_t BytesEqual(std::uint64_t word, char c) {
    const std::uint64_t x = word ^ (kOnes * static_cast<unsigned char>(c));
    return (x - kOnes) & ~x & kHigh;
}

// The first byte at or after `p` that is one of `targets`, eight bytes at a time.
template <char... targets>
const char* FindAny(const char* p, const char* end) {
    if constexpr (std::endian::native == std::endian::little) {
        while (end - p >= 8) {
            std::uint64_t word;
            std::memcpy(&word, p, sizeof word);
            const std::uint64_t found = (BytesEqual(word, targets) | ...);
            if (found != 0) return p + (std::countr_zero(found) >> 3);
            p += 8;
        }
    }
    while (p < end && ((*p != targets) && ...))
        ++p;
    return p;
}

std::string_view LineReader::PhysicalLine() {
    const char* const begin = source_.data() + position_;
    const char* const end = source_.data() + source_.size();
    const char* p = FindAny<'\r', '\n'>(begin, end);
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
        // Only these bytes can end a statement or start what hides a colon.
        p = FindAny<'"', '\'', ':', '#'>(p, end);
        if (p == end) break;
        switch (*p) {
            case '"':
                // A doubled quote inside a string reads as closing and reopening it.
                while (++p < end && *p != '"') {
                }
                if (p == end) return line.size();
                break;
            case '#':
                if (const std::size_t length = DateLiteralLength(begin, p, end)) p += length - 1;
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

std::string_view AfterWord(std::string_view text, std::string_view word) {
    text.remove_prefix(word.size());
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

}  // namespace arbolet::analysis::vb6
