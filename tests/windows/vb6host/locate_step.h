// "Locate Current Line" as a developer uses it in the IDE: the caret put on a line of a
// component's code window, Ctrl+L pressed in the tool window's tree, and the node it selected
// found again in the tool window's own tree dump by its key.
#pragma once

#include <windows.h>

#include <string>

#include "vb6host/host_context.h"
#include "vb6host/step_report.h"

namespace arbolet::vb6host {

// Makes the component's code pane the active one with the caret at the start of `line`, then
// presses Ctrl+L on the tree. Returns the selected node's place in tree order (the order of the
// dump, from 0), -1 when the component is unknown or nothing is selected.
int LocateWithKeyboard(HostContext& context, HWND main, HWND tree, const std::wstring& component,
                       std::int32_t line, Report& report);

// The key of the node at `place` in tree order of a tree dump; "" when there is none.
std::string KeyInDump(const std::wstring& dump, int place);

}  // namespace arbolet::vb6host
