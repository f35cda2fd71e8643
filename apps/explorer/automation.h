// What scripts and tests ask of the explorer without anyone at the keyboard, on a MainWindow
// with the projects already open: the document's own dumps (see document_automation.h), with
// the explorer's frame as the window pictured.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "main_window.h"
#include "windows/document/document_automation.h"

namespace arbolet::explorer_app {

inline bool DumpTree(MainWindow& window, const std::string& expand,
                     const std::filesystem::path& out, bool withSelection = false) {
    return windows::DumpDocumentTree(window.Document(), expand, out, withSelection);
}

inline std::vector<std::string> OpenComponents(MainWindow& window, const std::string& expand) {
    return windows::OpenDocumentComponents(window.Document(), expand);
}

inline bool DumpMenu(MainWindow& window, const std::string& key, const std::filesystem::path& out,
                     const std::filesystem::path& screenshot, std::string& error) {
    return windows::DumpDocumentMenu(window.Document(), window.hWnd(), key, out, screenshot, error);
}

inline bool SaveScreenshot(HWND window, const std::filesystem::path& out) {
    return windows::SaveWindowPicture(window, out);
}

}  // namespace arbolet::explorer_app
