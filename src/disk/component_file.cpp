// Component files: the designer header, module attributes and code (see component_file.h).
#include "disk/component_file.h"

#include <cstring>
#include <optional>

#include <algorithm>

#include "base/utf8.h"
#include "disk/codepage.h"

namespace arbolet::disk {
namespace {

std::string_view FirstToken(std::string_view line) {
    line = text::TrimLeft(line);
    const auto end = line.find_first_of(" \t=");
    return line.substr(0, end);
}

bool TokenIs(std::string_view line, std::string_view lowerWord) {
    const auto token = FirstToken(line);
    if (token.size() != lowerWord.size()) return false;
    for (std::size_t i = 0; i < token.size(); ++i) {
        const auto c = static_cast<unsigned char>(token[i]);
        if ((c >= 'A' && c <= 'Z' ? c + 32 : c) != static_cast<unsigned char>(lowerWord[i]))
            return false;
    }
    return true;
}

bool IsAttributeLine(std::string_view line) {
    return TokenIs(line, "attribute");
}

// `Attribute Name.VB_UserMemId = 0` and the like: hidden from the code window.
bool IsMemberAttribute(std::string_view line) {
    if (!IsAttributeLine(line)) return false;
    const auto rest = text::TrimLeft(text::TrimLeft(line).substr(9));
    const auto name = rest.substr(0, rest.find_first_of(" \t="));
    return name.find('.') != std::string_view::npos;
}

// The quoted value of `Attribute VB_Name = "X"`, or nullopt for other lines.
std::optional<std::string> VbNameOf(std::string_view line) {
    const auto rest = text::TrimLeft(text::TrimLeft(line).substr(9));
    if (text::ToLower(rest.substr(0, rest.find_first_of(" \t="))) != "vb_name") return std::nullopt;
    const auto open = rest.find('"');
    if (open == std::string_view::npos) return std::nullopt;
    const auto close = rest.find('"', open + 1);
    return std::string(
        rest.substr(open + 1, close == std::string_view::npos ? close : close - open - 1));
}

// Skips the `Begin` ... `End` designer or class block, nested blocks and property groups
// included. Returns the index of the first line after it. `Lines` holds the file's lines, decoded
// or not: the header's keywords are ASCII in every code page.
template <typename Lines>
std::size_t SkipDesignerBlock(const Lines& lines, std::size_t first,
                              std::vector<FileDiagnostic>& diagnostics) {
    int depth = 0;
    for (std::size_t i = first; i < lines.size(); ++i) {
        if (TokenIs(lines[i], "begin") || TokenIs(lines[i], "beginproperty")) {
            ++depth;
        } else if (TokenIs(lines[i], "end") || TokenIs(lines[i], "endproperty")) {
            if (--depth == 0) return i + 1;
        }
    }
    diagnostics.push_back({FileDiagnostic::Severity::Error, static_cast<std::int32_t>(first + 1),
                           "the Begin block opened here is never closed with End"});
    return lines.size();
}

template <typename Lines>
std::size_t SkipHeader(const Lines& lines, std::vector<FileDiagnostic>& diagnostics) {
    std::size_t i = 0;
    if (i < lines.size() && TokenIs(lines[i], "version")) ++i;
    while (i < lines.size() && TokenIs(lines[i], "object"))
        ++i;
    if (i < lines.size() && TokenIs(lines[i], "begin"))
        i = SkipDesignerBlock(lines, i, diagnostics);
    return i;
}

// The raw lines of a file as views of its bytes, without decoding them; the first line without
// a byte-order mark.
struct RawLineViews {
    std::string_view bytes;
    const std::vector<RawLine>& raw;
    std::size_t bom = 0;

    std::size_t size() const { return raw.size(); }
    std::string_view operator[](std::size_t i) const {
        const std::size_t skip = i == 0 ? bom : 0;
        return bytes.substr(raw[i].offset + skip, raw[i].length - skip);
    }
};

void CheckBytes(std::string_view bytes, const std::vector<RawLine>& raw,
                std::vector<FileDiagnostic>& diagnostics) {
    const bool binary = bytes.find('\0') != std::string_view::npos;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const auto line = static_cast<std::int32_t>(i + 1);
        if (binary &&
            bytes.substr(raw[i].offset, raw[i].length).find('\0') != std::string_view::npos) {
            diagnostics.push_back({FileDiagnostic::Severity::Error, line,
                                   "binary data (a NUL byte): this is not a VB6 text file"});
            return;
        }
        if (raw[i].length > kMaxVbLineBytes) {
            diagnostics.push_back(
                {FileDiagnostic::Severity::Warning, line,
                 "line of " + std::to_string(raw[i].length) + " bytes; VB6 loads at most 1023"});
        }
    }
}

}  // namespace

std::vector<RawLine> SplitRawLines(std::string_view bytes) {
    return SplitRawLines(bytes, SIZE_MAX);
}

std::vector<RawLine> SplitRawLines(std::string_view bytes, std::size_t maxLines) {
    std::vector<RawLine> lines;
    lines.reserve(std::min(bytes.size() / 32 + 1, maxLines));
    const char* const begin = bytes.data();
    const char* const end = begin + bytes.size();
    // The next CR and the next LF are each searched with memchr and remembered until passed, so
    // that files of lone CRs or of lone LFs are split in one pass.
    const auto find = [end](const char* from, char c) {
        const void* at = std::memchr(from, c, static_cast<std::size_t>(end - from));
        return at == nullptr ? end : static_cast<const char*>(at);
    };
    const char* nextCr = find(begin, '\r');
    const char* nextLf = find(begin, '\n');
    const char* start = begin;
    while (lines.size() < maxLines) {
        if (nextCr < start) nextCr = find(start, '\r');
        if (nextLf < start) nextLf = find(start, '\n');
        const char* p = std::min(nextCr, nextLf);
        if (p == end) break;
        RawLine line{static_cast<std::size_t>(start - begin), static_cast<std::size_t>(p - start),
                     LineEnding::LF};
        if (*p == '\r') {
            const std::string_view rest(p, static_cast<std::size_t>(end - p));
            if (rest.starts_with("\r\r\n")) {
                line.ending = LineEnding::CRCRLF;
                p += 2;
            } else if (rest.starts_with("\r\n")) {
                line.ending = LineEnding::CRLF;
                ++p;
            } else {
                line.ending = LineEnding::CR;
            }
        }
        lines.push_back(line);
        start = p + 1;
    }
    if (start < end && lines.size() < maxLines)
        lines.push_back({static_cast<std::size_t>(start - begin),
                         static_cast<std::size_t>(end - start), LineEnding::None});
    return lines;
}

std::string ComponentFile::CodeText() const {
    std::string text;
    for (std::size_t i = 0; i < codeLines.size(); ++i) {
        if (i > 0) text += "\r\n";
        text += lines[static_cast<std::size_t>(codeLines[i])];
    }
    return text;
}

std::optional<std::int32_t> ComponentFile::FileLineOfCodeLine(std::int32_t codeLine) const {
    if (codeLine < 0 || static_cast<std::size_t>(codeLine) >= codeLines.size()) return std::nullopt;
    return codeLines[static_cast<std::size_t>(codeLine)] + 1;
}

std::size_t Utf8BomLength(std::string_view bytes) {
    return bytes.starts_with(kUtf8Bom) ? kUtf8Bom.size() : 0;
}

ComponentFile ParseComponentFile(std::string_view bytes, int codePage) {
    ComponentFile file;
    file.raw = SplitRawLines(bytes);
    CheckBytes(bytes, file.raw, file.diagnostics);
    file.binary = bytes.find('\0') != std::string_view::npos;
    // The mark is no character of the first line: decoded in an ANSI code page it would hide
    // the line's first word. Line breaks are the same bytes in every supported code page and no
    // character decodes to one, so the decoded text splits into the same lines.
    const std::size_t bom = Utf8BomLength(bytes);
    const std::string decoded = DecodeCodePage(bytes.substr(bom), codePage);
    // Pure ASCII without a mark: the lines lie where they were.
    const bool unchanged = bom == 0 && decoded == bytes;
    file.lines.reserve(file.raw.size());
    for (const RawLine& line : unchanged ? file.raw : SplitRawLines(decoded)) {
        file.lines.emplace_back(std::string_view(decoded).substr(line.offset, line.length));
    }
    file.lines.resize(file.raw.size());

    std::size_t i = SkipHeader(file.lines, file.diagnostics);
    file.attributesBegin = static_cast<std::int32_t>(i);
    for (; i < file.lines.size() && IsAttributeLine(file.lines[i]); ++i) {
        if (auto name = VbNameOf(file.lines[i])) file.name = std::move(*name);
    }
    file.attributesEnd = static_cast<std::int32_t>(i);
    for (; i < file.lines.size(); ++i) {
        if (!IsMemberAttribute(file.lines[i]))
            file.codeLines.push_back(static_cast<std::int32_t>(i));
    }
    return file;
}

namespace {

// Whether the bytes may hold what CheckBytes reports: a NUL, or a line longer than VB6 loads
// (a stretch between two LFs that long; a file of lone CRs is one such stretch).
bool MayNeedDiagnostics(std::string_view bytes) {
    if (bytes.find('\0') != std::string_view::npos) return true;
    // Every line is short when each window of a line's most bytes and an LF, starting after an
    // LF, holds another LF; jumping to the window's last LF looks at a few bytes per window, not
    // at every line. A line just short enough but for its CR takes the careful way, as does a
    // file of lone CRs.
    constexpr std::size_t kWindow = kMaxVbLineBytes + 1;
    std::size_t start = 0;
    while (bytes.size() - start > kWindow) {
        const auto lf = bytes.substr(start, kWindow).rfind('\n');
        if (lf == std::string_view::npos) return true;
        start += lf + 1;
    }
    return bytes.size() - start > kMaxVbLineBytes;
}

// The lines of the header and attributes, split only as far as they go, so that the code of a
// large module is split into lines once, by its reader, rather than twice. Nullopt when the
// first `maxLines` lines do not settle where the code begins.
std::optional<CodeLocation> LocateCodeWithin(std::string_view bytes, std::size_t maxLines) {
    CodeLocation location;
    location.raw = SplitRawLines(bytes, maxLines);
    const bool whole = location.raw.size() < maxLines;
    const RawLineViews lines{bytes, location.raw, Utf8BomLength(bytes)};
    std::size_t i = SkipHeader(lines, location.diagnostics);
    while (i < lines.size() && IsAttributeLine(lines[i]))
        ++i;
    if (!whole && (i >= lines.size() || !location.diagnostics.empty())) return std::nullopt;
    location.firstCodeLine = static_cast<std::int32_t>(i);
    location.codeOffset = i < lines.size() ? location.raw[i].offset : bytes.size();
    return location;
}

}  // namespace

CodeLocation LocateCode(std::string_view bytes) {
    if (!MayNeedDiagnostics(bytes)) {
        for (std::size_t maxLines = 256; maxLines < (1u << 20); maxLines *= 16) {
            if (auto location = LocateCodeWithin(bytes, maxLines)) return std::move(*location);
        }
    }
    CodeLocation location;
    location.raw = SplitRawLines(bytes);
    CheckBytes(bytes, location.raw, location.diagnostics);
    const RawLineViews lines{bytes, location.raw, Utf8BomLength(bytes)};
    std::size_t i = SkipHeader(lines, location.diagnostics);
    while (i < lines.size() && IsAttributeLine(lines[i]))
        ++i;
    location.firstCodeLine = static_cast<std::int32_t>(i);
    location.codeOffset = i < lines.size() ? location.raw[i].offset : bytes.size();
    return location;
}

bool IsComponentFileName(std::string_view fileName) {
    const auto dot = fileName.rfind('.');
    if (dot == std::string_view::npos) return false;
    const std::string extension = text::ToLower(fileName.substr(dot + 1));
    static constexpr std::string_view kKinds[] = {"bas", "cls", "frm", "ctl", "pag", "dob", "dsr"};
    return std::find(std::begin(kKinds), std::end(kKinds), extension) != std::end(kKinds);
}

}  // namespace arbolet::disk
