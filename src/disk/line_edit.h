// A text file's bytes with line-level edits that leave every other byte as it was: untouched
// lines keep their content and their own terminators (CRLF, LF or CR, mixed as they are).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "disk/component_file.h"

namespace arbolet::disk {

class LineEditor {
  public:
    explicit LineEditor(std::string bytes = {});

    const std::string& Bytes() const { return bytes_; }
    const std::vector<RawLine>& Lines() const { return lines_; }
    std::size_t LineCount() const { return lines_.size(); }
    // The bytes of a line without its terminator.
    std::string_view Content(std::size_t line) const;

    // Replaces `length` bytes at `column` of a line (clamped to the line's content); the
    // terminator stays.
    void ReplaceInLine(std::size_t line, std::size_t column, std::size_t length,
                       std::string_view with);
    void ReplaceContent(std::size_t line, std::string_view content);
    // Inserts a new line before line `before` (LineCount() appends). It takes the terminator of
    // its neighbour; a last line without terminator gets one and the new line goes without.
    void InsertLine(std::size_t before, std::string_view content);
    // Removes a line with its terminator; removing the last line also takes the terminator
    // before it when the removed one had none, so no blank line is left behind.
    void RemoveLine(std::size_t line);

  private:
    std::string_view TerminatorFor(std::size_t before) const;
    void Resplit();

    std::string bytes_;
    std::vector<RawLine> lines_;
};

std::string_view TerminatorBytes(LineEnding ending);

}  // namespace arbolet::disk
