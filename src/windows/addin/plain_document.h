// A plain document for the tool window: a child window that lists the names of the IDE's open
// projects. It proves the hosting end to end until the tree document takes its place.
#pragma once

#include <memory>

#include "windows/addin/tool_window_document.h"

namespace arbolet::windows::addin {

std::unique_ptr<ToolWindowDocument> CreatePlainDocument();

}  // namespace arbolet::windows::addin
