// The text of a .vbp project file: its top-level Key=Value lines, its [Section] blocks, and the
// edits that extended properties make to it, each changing only the line it must.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "disk/component_file.h"
#include "disk/line_edit.h"

namespace arbolet::disk {

// One Key=Value line, decoded to UTF-8.
struct ProjectEntry {
    std::size_t line = 0;  // 0-based file line
    std::string key;       // blanks around it removed
    std::string value;     // after the first "=", blanks around it removed
};

struct ProjectSection {
    std::string name;  // between the brackets
    std::size_t headerLine = 0;
    std::vector<ProjectEntry> entries;
};

class ProjectFile {
  public:
    // Parsing never fails; lines it cannot read become diagnostics and stay as they are.
    ProjectFile(std::string bytes, int codePage);

    const std::string& Bytes() const { return editor_.Bytes(); }
    const std::vector<ProjectEntry>& TopLevel() const { return topLevel_; }
    const std::vector<ProjectSection>& Sections() const { return sections_; }
    const std::vector<FileDiagnostic>& Diagnostics() const { return diagnostics_; }
    // Whether the file holds binary data (a NUL byte) and so is no project file at all.
    bool IsBinary() const;

    // The value of the first top-level key of that name (ignoring case).
    std::optional<std::string> TopLevelValue(std::string_view key) const;
    // The value in [section] (both names ignoring case); nullopt when there is none.
    std::optional<std::string> ReadProperty(std::string_view section, std::string_view key) const;
    // Sets the value: in its line when the key exists (the key's spelling and everything up to
    // the "=" stay), as a new line at the end of the section when only the section exists, or
    // as a new section at the end of the file. Returns whether the bytes changed. Raises
    // arbolet::VbError for names or text that the file cannot hold (line breaks, "]" in a
    // section, "=" in a key, characters without form in the code page).
    bool WriteProperty(std::string_view section, std::string_view key, std::string_view value);
    // Replaces the value of the top-level entry on file line `line` (0-based), keeping the
    // key's spelling and the blanks before the value. Raises arbolet::VbError as WriteProperty.
    void SetTopLevelValue(std::size_t line, std::string_view value);
    // Adds a top-level Key=Value line after the last top-level entry (at the top when there is
    // none), before any section.
    void AddTopLevelEntry(std::string_view key, std::string_view value);
    // Adds a top-level Key=Value line right after file line `afterLine` (0-based).
    void InsertTopLevelEntry(std::size_t afterLine, std::string_view key, std::string_view value);
    // Removes the top-level entry on file line `line`, with its terminator.
    void RemoveTopLevelEntry(std::size_t line);

  private:
    void Parse();
    const ProjectSection* FindSection(std::string_view name) const;
    std::string Encode(std::string_view text) const;

    LineEditor editor_;
    int codePage_;
    std::vector<ProjectEntry> topLevel_;
    std::vector<ProjectSection> sections_;
    std::vector<FileDiagnostic> diagnostics_;
};

// A value written in quotes (Name="Inventory") without them; other values unchanged.
std::string Unquoted(std::string_view value);

}  // namespace arbolet::disk
