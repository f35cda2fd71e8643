// The document that the tool-window control hosts, seen from the control and the connection:
// it lives in a child window of the control, follows its size, is handed the IDE and the
// connection when the tool window is shown, and is unloaded when the add-in disconnects.
#pragma once

#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>

#include "windows/com/dispatch.h"

namespace arbolet::windows::addin {

// What the document may ask of the connection object.
class ConnectionActions {
  public:
    virtual ~ConnectionActions() = default;
    virtual void Show() = 0;
    virtual void Hide() = 0;
};

class ToolWindowDocument {
  public:
    virtual ~ToolWindowDocument() = default;
    // Creates the document's window as a child of `parent`; nullptr when it cannot.
    virtual HWND Create(HWND parent) = 0;
    virtual void Resize(int width, int height) = 0;
    // The IDE's VBE object and the connection, handed over before each show. The connection
    // outlives the document.
    virtual void Connect(const com::Dispatch& vbe, ConnectionActions& connection) = 0;
    // The tool window became visible.
    virtual void Shown() = 0;
    // Releases everything the document holds and destroys its window.
    virtual void Unload() = 0;

    // For scripts and tests, what the standalone explorer writes for the same projects: the tree
    // with the components `expand` names opened, and the context menu of the node with `key`
    // (with a picture of the IDE and the open menu when `screenshot` is named). False, with the
    // reason in `error`, when the document is not loaded or a dump fails.
    virtual bool DumpTree(const std::string& expand, const std::filesystem::path& out,
                          std::string& error) = 0;
    virtual bool DumpMenu(const std::string& key, const std::filesystem::path& out,
                          const std::filesystem::path& screenshot, std::string& error) = 0;
};

// The document the control hosts.
std::unique_ptr<ToolWindowDocument> CreateDocument();

}  // namespace arbolet::windows::addin
