// Document text and positions (see text_document.h).
#include "lsp/text_document.h"

#include <algorithm>

#include "base/utf8.h"

namespace arbolet::lsp {
namespace {

// How many bytes from the start of the line `units` units take (never past the line's end).
std::size_t BytesOfUnits(std::string_view line, std::int32_t units, PositionEncoding encoding) {
    if (encoding == PositionEncoding::Utf8) {
        return std::min(line.size(), static_cast<std::size_t>(std::max(units, 0)));
    }
    std::size_t bytes = 0;
    std::int32_t counted = 0;
    while (bytes < line.size() && counted < units) {
        const std::size_t length = text::CharByteLength(line, bytes);
        // A character outside the BMP is two UTF-16 units; a position between them ends
        // before it.
        const std::int32_t width = length == 4 ? 2 : 1;
        if (counted + width > units) break;
        bytes += length;
        counted += width;
    }
    return bytes;
}

}  // namespace

std::int32_t UnitsOf(std::string_view utf8, PositionEncoding encoding) {
    if (encoding == PositionEncoding::Utf8) return static_cast<std::int32_t>(utf8.size());
    std::int32_t units = 0;
    std::size_t i = 0;
    while (i < utf8.size()) {
        const std::size_t length = text::CharByteLength(utf8, i);
        units += length == 4 ? 2 : 1;
        i += length;
    }
    return units;
}

TextDocument::TextDocument(std::string text) {
    SetText(std::move(text));
}

void TextDocument::SetText(std::string text) {
    text_ = std::move(text);
    IndexLines();
}

void TextDocument::IndexLines() {
    lineStarts_.assign(1, 0);
    const std::size_t size = text_.size();
    for (std::size_t i = 0; i < size; ++i) {
        const char c = text_[i];
        if (c == '\r') {
            if (i + 1 < size && text_[i + 1] == '\n') ++i;
            lineStarts_.push_back(i + 1);
        } else if (c == '\n') {
            lineStarts_.push_back(i + 1);
        }
    }
}

std::string_view TextDocument::Line(std::int32_t line) const {
    if (line < 0 || line >= LineCount()) return {};
    const std::size_t start = lineStarts_[static_cast<std::size_t>(line)];
    std::size_t end =
        line + 1 < LineCount() ? lineStarts_[static_cast<std::size_t>(line) + 1] : text_.size();
    while (end > start && (text_[end - 1] == '\n' || text_[end - 1] == '\r'))
        --end;
    return std::string_view(text_).substr(start, end - start);
}

std::size_t TextDocument::OffsetOf(Position position, PositionEncoding encoding) const {
    if (position.line < 0) return 0;
    if (position.line >= LineCount()) return text_.size();
    const std::size_t start = lineStarts_[static_cast<std::size_t>(position.line)];
    return start + BytesOfUnits(Line(position.line), position.character, encoding);
}

std::int32_t TextDocument::ByteColumn(Position position, PositionEncoding encoding) const {
    return static_cast<std::int32_t>(
        BytesOfUnits(Line(position.line), position.character, encoding));
}

Position TextDocument::PositionOf(std::int32_t line, std::int32_t byteColumn,
                                  PositionEncoding encoding) const {
    const std::string_view text = Line(line);
    const std::size_t bytes =
        std::min(text.size(), static_cast<std::size_t>(std::max(byteColumn, 0)));
    return {line, UnitsOf(text.substr(0, bytes), encoding)};
}

Range TextDocument::RangeOf(std::int32_t line, std::int32_t byteColumn, std::int32_t length,
                            PositionEncoding encoding) const {
    return {PositionOf(line, byteColumn, encoding),
            PositionOf(line, byteColumn + std::max(length, 0), encoding)};
}

Range TextDocument::LinesRange(std::int32_t firstLine, std::int32_t lastLine,
                               PositionEncoding encoding) const {
    const std::int32_t last = std::max(firstLine, lastLine);
    return {{firstLine, 0},
            PositionOf(last, static_cast<std::int32_t>(Line(last).size()), encoding)};
}

void TextDocument::Replace(Range range, std::string_view text, PositionEncoding encoding) {
    std::size_t from = OffsetOf(range.start, encoding);
    std::size_t to = OffsetOf(range.end, encoding);
    if (from > to) std::swap(from, to);
    text_.replace(from, to - from, text);
    IndexLines();
}

}  // namespace arbolet::lsp
