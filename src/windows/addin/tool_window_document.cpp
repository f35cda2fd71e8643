// The factory of the tool-window document.
#include "windows/addin/tool_window_document.h"

#include "windows/addin/plain_document.h"

namespace arbolet::windows::addin {
namespace {
DocumentFactory g_factory = nullptr;
}  // namespace

void SetDocumentFactory(DocumentFactory factory) noexcept {
    g_factory = factory;
}

std::unique_ptr<ToolWindowDocument> CreateDocument() {
    return g_factory != nullptr ? g_factory() : CreatePlainDocument();
}

}  // namespace arbolet::windows::addin
