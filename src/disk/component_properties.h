// Extended properties of a component, kept as module attributes in its file:
//     Attribute VB_Ext_KEY = "Key" ,"Value"
// one line per key after the other module attributes, and the edits that change them, each
// touching only its own line.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "disk/component_file.h"
#include "disk/line_edit.h"

namespace arbolet::disk {

// The key and value of a VB_Ext_KEY attribute line; nullopt for any other line.
std::optional<std::pair<std::string, std::string>> ParseExtKeyAttribute(std::string_view line);
// The line VB writes for a key and value (quotes doubled inside the strings).
std::string FormatExtKeyAttribute(std::string_view key, std::string_view value);

// A component file's bytes, parsed, with its extended properties.
class ComponentText {
  public:
    ComponentText(std::string bytes, int codePage);

    const std::string& Bytes() const { return editor_.Bytes(); }
    const ComponentFile& File() const { return file_; }

    // The value of the key (ignoring case) in the module attribute block.
    std::optional<std::string> ReadProperty(std::string_view key) const;
    // Replaces the key's line, or adds one after the last module attribute. Returns whether the
    // bytes changed. Raises arbolet::VbError for text the file cannot hold, and for a file with
    // errors (binary data, an unclosed designer block), where the attribute block is unknown.
    bool WriteProperty(std::string_view key, std::string_view value);

    // Writes the new name into `Attribute VB_Name` (added when missing) and into the head of the
    // designer block when that names the component. Raises arbolet::VbError as WriteProperty.
    void Rename(std::string_view newName);

    // Renames the user control `projectName.oldName` where the designer block hosts it
    // (`Begin Project.Control name`, any depth, names ignoring case) to `newName`, keeping the
    // project name as written. Returns whether any line changed. Raises arbolet::VbError when
    // the file hosts the control but its structure cannot be read, or the name cannot be
    // written in its code page.
    bool RenameHostedControl(std::string_view projectName, std::string_view oldName,
                             std::string_view newName);

  private:
    void RequireReadableStructure(const char* source) const;
    void RenameDesignerBlock(std::string_view oldName, const std::string& encodedName);
    void InsertLineBehindMark(std::size_t before, const std::string& line);
    std::optional<std::size_t> FindPropertyLine(std::string_view key) const;

    LineEditor editor_;
    int codePage_;
    ComponentFile file_;
};

}  // namespace arbolet::disk
