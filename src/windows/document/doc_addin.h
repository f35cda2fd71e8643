// docAddin: the tool window's document. A child window that a host creates inside a window of
// its own (the IDE's tool window, or the standalone explorer's frame) and sizes; it holds the
// project tree, the two buttons that open the selected component's code or designer, and the
// popup menu object, and it runs the explorer over the environment the host hands it.
//
// Its life: the constructor is Initialize, Show is the full reload, Resize lays the children
// out, the destructor is Terminate. Everything runs on the thread that created it.
#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <shellapi.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "analysis/display_options.h"
#include "commands/context_menus.h"
#include "commands/dispatcher.h"
#include "commands/front_end.h"
#include "environment/vbide.h"
#include "explorer/code_navigation.h"
#include "explorer/project_explorer.h"
#include "explorer/ui_services.h"
#include "windows/document/doc_navigation.h"
#include "windows/popupmenu/popup_menu.h"
#include "windows/treeview/tree_control.h"

namespace arbolet::windows {

// The help file's place: the add-in's folder and "Arbolet.chm", with a single "\" between them
// also when the folder is a drive root.
std::string HelpFilePath(std::string_view addinFolder);

class docAddin final {
  public:
    // Initialize: creates the document as a child of `parent`. The commands open dialogs, hide
    // the window and show components through `frontEnd`, which the host implements. Message
    // boxes and questions go through `ui` when one is given (tests answer them), else through
    // real dialogs.
    docAddin(HWND parent, commands::FrontEnd& frontEnd, explorer::UiServices* ui = nullptr);
    // Terminate.
    ~docAddin();
    docAddin(const docAddin&) = delete;
    docAddin& operator=(const docAddin&) = delete;

    HWND hWnd() const noexcept { return hWnd_; }
    TreeControl& treMain() noexcept { return *tree_; }
    cPopupMenu& PopupMenu() noexcept { return menu_; }
    const std::string& HelpFile() const noexcept { return helpFile_; }

    // The environment the tree shows, nullptr to disconnect; the options the code view reads
    // (nullptr: the option store in the registry). Takes effect at the next Show.
    void SetEnvironment(std::shared_ptr<env::VBE> vbe,
                        analysis::IDisplayOptionSource* displayOptions = nullptr);
    const std::shared_ptr<env::VBE>& Environment() const noexcept { return vbe_; }
    // The explorer working on the tree, nullptr before the first Show with an environment.
    explorer::ProjectExplorer* Explorer() noexcept { return explorer_.get(); }

    // Shows Arbolet's icons and the text at the window's current DPI.
    void UpdatePictures();
    // The window moved to a screen of another DPI (WM_DPICHANGED): icons, font and layout
    // follow it.
    void SetDpi(UINT dpi);
    UINT Dpi() const noexcept { return dpi_; }

    // Builds the code trees on show again, after the display options changed.
    void RebuildCodeTrees();

    // Show: the full reload when an environment is set.
    void Show();
    // Resize: places the document in its parent's client area and lays out its children.
    void Resize(int left, int top, int width, int height);

    // Opens the context menu of a node (nullptr: empty tree space) or of the document's
    // background at a point of the screen, as a right click there does; the chosen item's
    // command runs before it returns. False when there is no menu to show.
    bool ShowTreeMenu(const tree::Node* node, POINT screen);
    bool ShowBackgroundMenu(POINT screen);
    // Runs a menu item's command by its key ("ShowProperties", ...) on the selected node, as
    // choosing the item does; nothing happens before the first Show with an environment.
    void RunMenuCommand(std::string_view key);

    // After the user changed the projects through the tree (a rename, a move, dropped files),
    // for a host that saves them itself.
    std::function<void()> Edited;
    // The selected node changed; nullptr when nothing is selected.
    std::function<void(tree::Node* node)> SelectionChanged;
    // Project and group files dropped onto the document, for the host to open.
    std::function<void(const std::vector<std::filesystem::path>& files)> ProjectFilesDropped;
    // The component and line the host's code editor is at, for Locate; nullopt when none.
    std::function<std::optional<explorer::CodeLocation>()> CurrentCodeLocation;

    // The search box, Locate, the steps through errors and the status line under the tree.
    DocNavigation& Navigation() noexcept { return *navigation_; }

  private:
    friend class DocNavigation;
    static LRESULT CALLBACK Proc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT iMsg, WPARAM wParam, LPARAM lParam);

    void LayOut();
    void ConnectTreeEvents();
    void OnRightClick();
    void OnContextMenuKey(HWND from);
    void RunCommand(const std::function<explorer::Outcome()>& command);
    void RunDeferred();
    void OnDropFiles(HDROP drop);
    // Dragging a node with the mouse.
    void BeginDrag(tree::Node& node);
    void DragTo(POINT client);
    // Ends the drag, dropping at a point of the tree's client area when `drop` is set.
    void EndDrag(bool drop, POINT client);
    tree::NodeRef DropTarget(POINT client) const;

    HWND hWnd_ = nullptr;
    std::unique_ptr<TreeControl> tree_;
    HWND cmdCode_ = nullptr;
    HWND cmdForm_ = nullptr;
    HFONT font_ = nullptr;  // owned: the message font at dpi_
    UINT dpi_ = 96;
    HIMAGELIST pictures_ = nullptr;
    cPopupMenu menu_;
    std::string helpFile_;
    std::unique_ptr<explorer::UiServices> ownUi_;
    explorer::UiServices* ui_ = nullptr;
    std::shared_ptr<env::VBE> vbe_;
    analysis::IDisplayOptionSource* displayOptions_ = nullptr;
    std::unique_ptr<analysis::IDisplayOptionSource> registryOptions_;
    commands::FrontEnd& frontEnd_;
    std::unique_ptr<explorer::ProjectExplorer> explorer_;
    std::unique_ptr<commands::ContextMenus> contextMenus_;
    std::unique_ptr<commands::Dispatcher> dispatcher_;
    std::unique_ptr<DocNavigation> navigation_;
    // Work that must wait until the control has finished the notification it is in.
    struct Deferred {
        enum class Kind { Collapse, Rename } kind;
        std::string key;
        std::string newText;
    };
    std::vector<Deferred> deferred_;
    // The drag in progress.
    struct Drag {
        std::string key;
        HIMAGELIST image = nullptr;
        HTREEITEM highlighted = nullptr;
    };
    std::unique_ptr<Drag> drag_;
};

}  // namespace arbolet::windows
