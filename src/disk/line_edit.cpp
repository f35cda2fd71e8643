// Line-level edits of a text file's bytes (see line_edit.h).
#include "disk/line_edit.h"

#include <algorithm>

namespace arbolet::disk {

std::string_view TerminatorBytes(LineEnding ending) {
    switch (ending) {
        case LineEnding::CRLF:
            return "\r\n";
        case LineEnding::LF:
            return "\n";
        case LineEnding::CR:
            return "\r";
        case LineEnding::None:
            break;
    }
    return {};
}

LineEditor::LineEditor(std::string bytes) : bytes_(std::move(bytes)) {
    Resplit();
}

void LineEditor::Resplit() {
    lines_ = SplitRawLines(bytes_);
}

std::string_view LineEditor::Content(std::size_t line) const {
    const RawLine& raw = lines_.at(line);
    return std::string_view(bytes_).substr(raw.offset, raw.length);
}

void LineEditor::ReplaceInLine(std::size_t line, std::size_t column, std::size_t length,
                               std::string_view with) {
    const RawLine& raw = lines_.at(line);
    column = std::min(column, raw.length);
    length = std::min(length, raw.length - column);
    bytes_.replace(raw.offset + column, length, with);
    Resplit();
}

void LineEditor::ReplaceContent(std::size_t line, std::string_view content) {
    ReplaceInLine(line, 0, lines_.at(line).length, content);
}

// The terminator of the nearest line that has one, looking first at the line before the
// insertion point; VB's own CRLF for a file without any.
std::string_view LineEditor::TerminatorFor(std::size_t before) const {
    for (std::size_t i = before; i > 0; --i) {
        if (lines_[i - 1].ending != LineEnding::None) return TerminatorBytes(lines_[i - 1].ending);
    }
    for (std::size_t i = before; i < lines_.size(); ++i) {
        if (lines_[i].ending != LineEnding::None) return TerminatorBytes(lines_[i].ending);
    }
    return "\r\n";
}

void LineEditor::InsertLine(std::size_t before, std::string_view content) {
    before = std::min(before, lines_.size());
    const std::string terminator(TerminatorFor(before));
    if (before < lines_.size()) {
        bytes_.insert(lines_[before].offset, std::string(content) + terminator);
    } else if (!lines_.empty() && lines_.back().ending == LineEnding::None) {
        bytes_ += terminator;
        bytes_ += content;
    } else {
        bytes_ += std::string(content) + terminator;
    }
    Resplit();
}

void LineEditor::RemoveLine(std::size_t line) {
    if (line >= lines_.size()) return;
    const RawLine& raw = lines_[line];
    std::size_t start = raw.offset;
    const std::size_t end = raw.offset + raw.length + TerminatorBytes(raw.ending).size();
    if (raw.ending == LineEnding::None && line > 0) {
        start -= TerminatorBytes(lines_[line - 1].ending).size();
    }
    bytes_.erase(start, end - start);
    Resplit();
}

}  // namespace arbolet::disk
