// The tool window's own dumps, asked of the control the IDE holds as DocObj: the tree and a
// node's context menu as the standalone explorer writes them.
#pragma once

#include <oaidl.h>

#include <string>

namespace arbolet::vb6host {

// Calls DocObj.DumpMenu(key, out, screenshot); false with the control's reason in `error`.
bool DumpDocumentMenu(IDispatch* document, const std::wstring& key, const std::wstring& out,
                      const std::wstring& screenshot, std::string& error);
// Calls DocObj.DumpTree(out, expand); false with the control's reason in `error`.
bool DumpDocumentTree(IDispatch* document, const std::wstring& out, const std::wstring& expand,
                      std::string& error);

}  // namespace arbolet::vb6host
