// The tool window's document in the IDE: the project tree document over the IDE's own objects,
// its commands done in the IDE.
#pragma once

#include <memory>

#include "windows/addin/tool_window_document.h"

namespace arbolet::windows::addin {

std::unique_ptr<ToolWindowDocument> CreateIdeDocument();

}  // namespace arbolet::windows::addin
