// What scripts and tests ask of a tree document without anyone at the keyboard: the tree read
// back from the real control as JSON, the context menu read while it is open, and a picture of
// a window. The standalone explorer and the add-in's tool window both answer through these, so
// the two give the same output for the same projects.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "windows/document/doc_addin.h"
#include "windows/screenshot/screen_capture.h"

namespace arbolet::windows {

// Opens the components `expand` names ("all", or names separated by commas, in any letter
// case) through the control, one at a time as a user would, and writes every item of the
// control as {"nodes":[...]}: text, picture and bold state from the control, key, colour and
// tag from the node the item shows, and "mark" where the control draws a mark's sign.
// `withSelection` adds "selected", the selected node's key (null when none is). False when the
// file cannot be written.
bool DumpDocumentTree(docAddin& document, const std::string& expand,
                      const std::filesystem::path& out, bool withSelection = false);

// Opens the components `expand` names (as DumpDocumentTree reads it) and leaves them open, so
// that their code lines can be asked for next. Returns what could not be opened and why, as
// "NAME: message" lines.
std::vector<std::string> OpenDocumentComponents(docAddin& document, const std::string& expand);

// Opens the context menu of the node with `key` ("" for empty tree space, "#background" for the
// document's background) as a right click there does, reads the real menu while it is open
// (caption with its "&", key, enabled state, separator, sub-menu items), closes it and writes
// {"items":[...]}; takes the picture `screenshot` of `window` with the menu first when one is
// named. False, with the reason in `error`, when there is no such node, no menu opened, or a
// file cannot be written.
bool DumpDocumentMenu(docAddin& document, HWND window, const std::string& key,
                      const std::filesystem::path& out, const std::filesystem::path& screenshot,
                      std::string& error);

}  // namespace arbolet::windows
