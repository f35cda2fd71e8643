// What the standalone explorer remembers between runs, under HKEY_CURRENT_USER: the recent
// project files, the window's placement and the editor's command line.
#pragma once

#include <windows.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace arbolet::explorer_app {

inline constexpr std::size_t kMaxRecentFiles = 8;

std::vector<std::filesystem::path> RecentFiles();
// Puts the file first in the list, without repeats, keeping at most kMaxRecentFiles.
void AddRecentFile(const std::filesystem::path& file);
// Takes a file off the list (a file that no longer exists).
void RemoveRecentFile(const std::filesystem::path& file);
// The list with a file moved to the front; pure, for the menu and for tests.
std::vector<std::filesystem::path> WithRecentFile(std::vector<std::filesystem::path> list,
                                                  const std::filesystem::path& file);

std::optional<WINDOWPLACEMENT> SavedPlacement();
void SavePlacement(const WINDOWPLACEMENT& placement);

// The command line that opens a file at a line, with {file} and {line} in it; empty: the
// program associated with the file.
std::wstring EditorCommand();
void SetEditorCommand(const std::wstring& command);

}  // namespace arbolet::explorer_app
