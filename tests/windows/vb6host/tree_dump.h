// Reading the tree view inside an add-in's tool window as a user sees it: finding it and its
// nodes, opening nodes with the keyboard (so that the tree tells its owner, as a click would).
// The JSON dumps are the tool window's own (document_dumps.h).
#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <commctrl.h>

#include <string>
#include <vector>

namespace arbolet::vb6host {

// The first tree view inside `root`, or nullptr.
HWND FindTreeView(HWND root);
// Opens every node whose text is in `names`, or every node with children when `all`: each is
// selected and opened with the keyboard's "+" key. Returns how many were opened.
int ExpandNodes(HWND tree, const std::vector<std::wstring>& names, bool all);
// How many nodes the tree holds.
int CountNodes(HWND tree);
// Whether a node has this text.
bool HasNodeText(HWND tree, const std::wstring& text);
// The first node with this text, in the tree's order, or nullptr.
HTREEITEM FindNode(HWND tree, const std::wstring& text);
// A node's text, and the text of its parent ("" for a root).
std::wstring NodeText(HWND tree, HTREEITEM item);
std::wstring ParentText(HWND tree, HTREEITEM item);
// Where the node's caption is on the screen, scrolled into view first; false when it cannot be
// shown.
bool NodeScreenRect(HWND tree, HTREEITEM item, RECT& area);

}  // namespace arbolet::vb6host
