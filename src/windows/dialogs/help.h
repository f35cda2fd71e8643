// Opening Arbolet.chm: the help file that sits beside the add-in DLL (or the program).
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace arbolet::windows::dialogs {

inline constexpr const char* kHelpFileName = "Arbolet.chm";

// The help file in a folder: the folder, a "\" unless it already ends with one (a drive root
// such as "C:\"), then "Arbolet.chm".
std::string HelpFilePath(std::string_view folder);

// The help file beside Arbolet's own module (the add-in DLL inside the IDE).
std::string DefaultHelpFile();

// Opens the help file at a topic ("tool-window.html"; empty for the first page) with HTML Help
// (hhctrl.ocx, loaded when first needed), or with the program associated with .chm files when
// HTML Help is missing. Answers false, having opened nothing, when the file does not exist or
// nothing could open it.
bool ShowHelp(HWND hWndOwner, const std::string& helpFile, std::string_view topic = {});

}  // namespace arbolet::windows::dialogs
