// What scripts and tests ask of the explorer without anyone at the keyboard: the tree read back
// from the real control as JSON, the context menu read while it is open, and a picture of the
// window. Each works on a MainWindow with the projects already open.
#pragma once

#include <filesystem>
#include <string>

#include "main_window.h"

namespace arbolet::explorer_app {

// Opens the components `expand` names ("all", or names separated by commas, in any letter
// case) through the control, one at a time as a user would, and writes every item of the
// control as {"nodes":[...]}: text, picture and bold state from the control, key, colour and
// tag from the node the item shows. False when the file cannot be written.
bool DumpTree(MainWindow& window, const std::string& expand, const std::filesystem::path& out);

// Opens the context menu of the node with `key` ("" for empty tree space, "#background" for the
// document's background) as a right click there does, reads the real menu while it is open
// (caption with its "&", key, enabled state, separator, sub-menu items), closes it and writes
// {"items":[...]}; takes the picture `screenshot` of it first when one is named. False, with
// the reason in `error`, when there is no such node, no menu opened, or a file cannot be
// written.
bool DumpMenu(MainWindow& window, const std::string& key, const std::filesystem::path& out,
              const std::filesystem::path& screenshot, std::string& error);

// Saves a picture of the window and of any menu open over it; false when nothing was captured
// or the file cannot be written.
bool SaveScreenshot(HWND window, const std::filesystem::path& out);

}  // namespace arbolet::explorer_app
