// Reading VB6 component files (.bas .cls .frm .ctl .pag .dob .dsr): the code-window text the IDE
// would show, the component's name and attributes, and the map from code lines to file lines.
//
// Parsing works on bytes already in memory and never fails: malformed files give diagnostics.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace arbolet::disk {

// CR CR LF is what a second conversion to CRLF makes of a CRLF; it is one line end.
enum class LineEnding { CRLF, LF, CR, CRCRLF, None };

// One physical line of a text file: its bytes without the terminator, and the terminator.
struct RawLine {
    std::size_t offset = 0;  // of the first byte in the file
    std::size_t length = 0;  // without the terminator
    LineEnding ending = LineEnding::None;
};

// Splits bytes into lines at CRLF, CR CR LF, LF and lone CR. A file ending in a terminator has no
// empty last line; an empty file has no lines.
std::vector<RawLine> SplitRawLines(std::string_view bytes);
// The first `maxLines` lines only.
std::vector<RawLine> SplitRawLines(std::string_view bytes, std::size_t maxLines);

struct FileDiagnostic {
    enum class Severity { Warning, Error };
    Severity severity = Severity::Error;
    std::int32_t line = 0;  // 1-based file line, 0 when it concerns the whole file
    std::string message;
};

// The UTF-8 byte-order mark some editors write before the first line. VB6 writes none; the
// first line is read behind it, and every rewrite keeps it.
inline constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
// 3 when the bytes begin with the mark, else 0.
std::size_t Utf8BomLength(std::string_view bytes);

// VB6 cannot load a line longer than this many bytes.
inline constexpr std::size_t kMaxVbLineBytes = 1023;

struct ComponentFile {
    // Every file line, decoded to UTF-8, without terminators.
    std::vector<std::string> lines;
    std::vector<RawLine> raw;
    // The component's name from `Attribute VB_Name`, empty when there is none.
    std::string name;
    // Module attribute block: file lines [attributesBegin, attributesEnd), 0-based.
    std::int32_t attributesBegin = 0;
    std::int32_t attributesEnd = 0;
    // 0-based file line of each code-window line, in order.
    std::vector<std::int32_t> codeLines;
    std::vector<FileDiagnostic> diagnostics;
    // Whether the bytes hold binary data (a NUL byte): no VB6 text file at all.
    bool binary = false;

    // The code-window text: the code lines joined with CRLF, as CodeModule.Lines(1, n) gives it.
    std::string CodeText() const;
    // The 1-based file line of a 0-based code line; nullopt when out of range.
    std::optional<std::int32_t> FileLineOfCodeLine(std::int32_t codeLine) const;
};

// Parses a component file's bytes in the given code page.
ComponentFile ParseComponentFile(std::string_view bytes, int codePage);

// Where the code of a component file begins, found without decoding the file: the lines after
// the designer header and the module attributes (member attributes stay in the code).
struct CodeLocation {
    // The file's lines at least up to the code's first; all of them only when the file needed
    // its diagnostics. SplitRawLines gives the rest when they are wanted.
    std::vector<RawLine> raw;
    std::int32_t firstCodeLine = 0;  // 0-based file line
    std::size_t codeOffset = 0;      // of that line's first byte
    std::vector<FileDiagnostic> diagnostics;
};

CodeLocation LocateCode(std::string_view bytes);

// Whether a path names a component file kind that holds code, by its extension (any case).
bool IsComponentFileName(std::string_view fileName);

}  // namespace arbolet::disk
