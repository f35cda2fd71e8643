// Opening a component file at a line in the editor the user chose: a command line with {file}
// and {line} in it, or, without one, the program associated with the file.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace arbolet::explorer_app {

// The command with every {file} and {line} replaced; the user writes any quotes the editor needs.
std::wstring ExpandEditorCommand(std::wstring_view command, const std::filesystem::path& file,
                                 std::int32_t line);

// Starts the editor; false (and a message box owned by `owner`) when it could not be started.
bool OpenInEditor(HWND owner, const std::filesystem::path& file, std::int32_t line);

}  // namespace arbolet::explorer_app
