// The text of a document as the editor has it, with positions in the negotiated encoding
// (UTF-16 code units or UTF-8 bytes) over lines that end in CRLF, LF or a lone CR, and the
// incremental edits of didChange applied to it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace arbolet::lsp {

enum class PositionEncoding { Utf16, Utf8 };

struct Position {
    std::int32_t line = 0;
    std::int32_t character = 0;
};

struct Range {
    Position start;
    Position end;
};

// The count of a byte range of UTF-8 text in the encoding's units; bytes that are no valid
// UTF-8 count one unit each, so that any text gets positions.
std::int32_t UnitsOf(std::string_view utf8, PositionEncoding encoding);

class TextDocument {
  public:
    TextDocument() = default;
    explicit TextDocument(std::string text);

    const std::string& Text() const { return text_; }
    std::int32_t LineCount() const { return static_cast<std::int32_t>(lineStarts_.size()); }
    // A physical line without its line end; empty past the end.
    std::string_view Line(std::int32_t line) const;

    // The byte offset of a position; a character past the line's end is its end, a line past
    // the last is the end of the text (as the protocol asks of clients' positions).
    std::size_t OffsetOf(Position position, PositionEncoding encoding) const;
    // The position of a byte column of a line.
    Position PositionOf(std::int32_t line, std::int32_t byteColumn,
                        PositionEncoding encoding) const;
    // The range of `length` bytes from a byte column, on one line.
    Range RangeOf(std::int32_t line, std::int32_t byteColumn, std::int32_t length,
                  PositionEncoding encoding) const;
    // The range from the start of `firstLine` to the end of `lastLine`.
    Range LinesRange(std::int32_t firstLine, std::int32_t lastLine,
                     PositionEncoding encoding) const;
    // The byte column of a position on its line.
    std::int32_t ByteColumn(Position position, PositionEncoding encoding) const;

    // Replaces a range (start after end is taken as the reverse) with new text.
    void Replace(Range range, std::string_view text, PositionEncoding encoding);
    void SetText(std::string text);

  private:
    void IndexLines();

    std::string text_;
    std::vector<std::size_t> lineStarts_;
};

}  // namespace arbolet::lsp
