// The document the tool-window control hosts: the project tree over the IDE.
#include "windows/addin/tool_window_document.h"

#include "windows/addin/ide_document.h"

namespace arbolet::windows::addin {

std::unique_ptr<ToolWindowDocument> CreateDocument() {
    return CreateIdeDocument();
}

}  // namespace arbolet::windows::addin
