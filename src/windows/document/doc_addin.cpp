// The document window: its children, its life and the user's actions on the tree.
#include "windows/document/doc_addin.h"

#include <shellapi.h>

#include <algorithm>
#include <exception>

#include "base/utf8.h"
#include "base/vb_error.h"
#include "windows/base/ansi_text.h"
#include "windows/document/node_pictures.h"
#include "windows/document/win32_ui.h"
#include "windows/icons/tree_icons.h"
#include "windows/options/registry_display_options.h"

namespace arbolet::windows {
namespace {

constexpr const wchar_t* kClassName = L"ArboletDocument";
constexpr UINT kTreeId = 1;
constexpr UINT kCodeButtonId = 2;
constexpr UINT kFormButtonId = 3;
constexpr UINT kSearchId = 4;
constexpr UINT kLocateButtonId = 5;
// Posted to run what had to wait for the control to finish a notification.
constexpr UINT kRunDeferred = WM_APP + 1;
constexpr int kButtonHeight = 24;  // at 96 dots per inch
constexpr int kButtonWidth = 80;
constexpr int kGap = 2;
constexpr int kSearchHeight = 21;
constexpr int kStatusHeight = 18;

// The module that holds this code: the add-in DLL, or the explorer's program.
HMODULE OwnModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&OwnModule), &module);
    return module;
}

std::string OwnFolder() {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(OwnModule(), path, MAX_PATH);
    std::wstring folder(path);
    const std::size_t slash = folder.find_last_of(L"\\/");
    folder.resize(slash == std::wstring::npos ? 0 : slash);
    // A drive root keeps its "\".
    if (folder.size() == 2 && folder[1] == L':') folder += L'\\';
    return WideToUtf8(folder);
}

UINT WindowDpi(HWND hWnd) {
    using GetDpiForWindowFn = UINT(WINAPI*)(HWND);
    static const auto getDpi = reinterpret_cast<GetDpiForWindowFn>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
    const UINT dpi = getDpi != nullptr ? getDpi(hWnd) : 0;
    return dpi != 0 ? dpi : 96;
}

// The font of message boxes at a DPI: what the user chose for dialog text, at the document's
// scale rather than the primary screen's.
HFONT DocumentFont(UINT dpi) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof(metrics);
    if (!SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0)) {
        GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof(metrics.lfMessageFont),
                   &metrics.lfMessageFont);
    }
    const HDC screen = GetDC(nullptr);
    const int systemDpi = screen != nullptr ? GetDeviceCaps(screen, LOGPIXELSY) : 96;
    if (screen != nullptr) ReleaseDC(nullptr, screen);
    metrics.lfMessageFont.lfHeight =
        MulDiv(metrics.lfMessageFont.lfHeight, static_cast<int>(dpi), systemDpi);
    return CreateFontIndirectW(&metrics.lfMessageFont);
}

ATOM RegisterDocumentClass(WNDPROC proc) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = proc;
    windowClass.hInstance = OwnModule();
    windowClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    windowClass.lpszClassName = kClassName;
    return RegisterClassExW(&windowClass);
}

bool IsProjectFile(const std::filesystem::path& file) {
    const std::string extension = text::ToLower(file.extension().string());
    return extension == ".vbp" || extension == ".vbg";
}

}  // namespace

std::string HelpFilePath(std::string_view addinFolder) {
    std::string path(addinFolder);
    if (!path.ends_with('\\')) path += '\\';
    return path + "Arbolet.chm";
}

docAddin::docAddin(HWND parent, commands::FrontEnd& frontEnd, explorer::UiServices* ui)
    : frontEnd_(frontEnd) {
    static const ATOM registered = RegisterDocumentClass(&docAddin::Proc);
    (void)registered;
    hWnd_ = CreateWindowExW(WS_EX_CONTROLPARENT | WS_EX_ACCEPTFILES, kClassName, L"",
                            WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 100, 100, parent,
                            nullptr, OwnModule(), this);
    if (hWnd_ == nullptr) {
        throw VbError(static_cast<std::int32_t>(GetLastError()), "docAddin",
                      "The document window could not be created");
    }

    tree_ = std::make_unique<TreeControl>(hWnd_, kTreeId);
    cmdCode_ = CreateWindowExW(0, L"BUTTON", L"View &Code", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0,
                               0, kButtonWidth, kButtonHeight, hWnd_,
                               reinterpret_cast<HMENU>(static_cast<UINT_PTR>(kCodeButtonId)),
                               OwnModule(), nullptr);
    cmdForm_ = CreateWindowExW(0, L"BUTTON", L"View &Object", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0,
                               0, kButtonWidth, kButtonHeight, hWnd_,
                               reinterpret_cast<HMENU>(static_cast<UINT_PTR>(kFormButtonId)),
                               OwnModule(), nullptr);
    navigation_ = std::make_unique<DocNavigation>(*this, hWnd_, kSearchId, kLocateButtonId);
    if (ui == nullptr) ownUi_ = std::make_unique<Win32Ui>(hWnd_);
    ui_ = ui != nullptr ? ui : ownUi_.get();

    // Initialize: the menu object and the help file. The tree's notifications reach the
    // document as the tree's parent, so the tree needs no subclass: one would put every message
    // of the tree, thousands for a large code tree, through the subclassing service's look-ups.
    menu_.hWndOwner(hWnd_);
    menu_.Click = [this](std::int32_t item) {
        if (navigation_->RunMenuItem(menu_.ItemKey(item))) return;
        if (dispatcher_) RunCommand([&] { return dispatcher_->ItemClicked(menu_, item); });
    };
    // Long lines' tags wrap in a tooltip of a readable width.
    const auto tips = reinterpret_cast<HWND>(SendMessageW(tree_->hWnd(), TVM_GETTOOLTIPS, 0, 0));
    if (tips != nullptr)
        SendMessageW(tips, TTM_SETMAXTIPWIDTH, 0,
                     MulDiv(400, static_cast<int>(WindowDpi(hWnd_)), 96));
    helpFile_ = HelpFilePath(OwnFolder());
    dpi_ = WindowDpi(hWnd_);
    UpdatePictures();
    ConnectTreeEvents();
    LayOut();
}

docAddin::~docAddin() {
    EndDrag(false, {});
    // The control lets go of the list before it is freed; its items keep their indexes.
    TreeView_SetImageList(tree_->hWnd(), nullptr, TVSIL_NORMAL);
    if (pictures_ != nullptr) ImageList_Destroy(pictures_);
    if (font_ != nullptr) DeleteObject(font_);
    dispatcher_.reset();
    contextMenus_.reset();
    explorer_.reset();
    navigation_.reset();
    tree_.reset();
    if (IsWindow(hWnd_)) {
        SetWindowLongPtrW(hWnd_, GWLP_USERDATA, 0);
        DestroyWindow(hWnd_);
    }
}

void docAddin::UpdatePictures() {
    HIMAGELIST previous = pictures_;
    pictures_ = icons::CreateTreeImageList(dpi_);
    tree_->SetPictures(pictures_, [this](const TreeItemNode& node) {
        return TreeIconIndexOf(LookOf(node, vbe_.get()));
    });
    if (previous != nullptr) ImageList_Destroy(previous);
    HFONT previousFont = font_;
    font_ = DocumentFont(dpi_);
    for (HWND child : {tree_->hWnd(), cmdCode_, cmdForm_})
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
    navigation_->SetFont(font_);
    if (previousFont != nullptr) DeleteObject(previousFont);
}

void docAddin::SetDpi(UINT dpi) {
    if (dpi == 0 || dpi == dpi_) return;
    dpi_ = dpi;
    UpdatePictures();
    LayOut();
}

// Each component whose code is on show is closed and opened again, so that its code tree is
// built anew with the options as they are now.
void docAddin::RebuildCodeTrees() {
    if (!explorer_) return;
    tree::Nodes& nodes = tree_->Nodes();
    std::vector<std::string> open;
    for (std::int32_t i = 1; i <= nodes.Count(); ++i) {
        const tree::NodeRef node = nodes.Item(i);
        if (node->Kind() == tree::NodeKind::Component && node->Expanded())
            open.push_back(node->Key());
    }
    const tree::UpdateScope update(*tree_);
    for (const std::string& key : open) {
        if (!nodes.Exists(key)) continue;
        const tree::NodeRef node = nodes.Item(key);
        explorer_->CollapseNode(*node);
        explorer_->ExpandNode(*node);
    }
}

void docAddin::SetEnvironment(std::shared_ptr<env::VBE> vbe,
                              analysis::IDisplayOptionSource* displayOptions) {
    dispatcher_.reset();
    contextMenus_.reset();
    explorer_.reset();
    vbe_ = std::move(vbe);
    displayOptions_ = displayOptions;
}

void docAddin::Show() {
    if (!vbe_) return;
    if (!explorer_) {
        if (displayOptions_ == nullptr && !registryOptions_)
            registryOptions_ = std::make_unique<options::RegistryDisplayOptions>();
        explorer_ = std::make_unique<explorer::ProjectExplorer>(
            vbe_, *tree_, *ui_,
            displayOptions_ != nullptr ? displayOptions_ : registryOptions_.get());
        contextMenus_ =
            std::make_unique<commands::ContextMenus>(menu_, vbe_, tree_->Nodes(), *explorer_);
        dispatcher_ =
            std::make_unique<commands::Dispatcher>(vbe_, *tree_, *explorer_, *ui_, frontEnd_);
    }
    {
        const tree::UpdateScope update(*tree_);
        explorer_->RefreshProjects();
    }
    navigation_->Reloaded();
}

bool docAddin::ShowTreeMenu(const tree::Node* node, POINT screen) {
    if (!contextMenus_ || !contextMenus_->BuildTreeMenu(commands::MouseButton::Right, node))
        return false;
    menu_.ShowPopupAbsolute(screen.x, screen.y);
    return true;
}

bool docAddin::ShowBackgroundMenu(POINT screen) {
    if (!contextMenus_ || !contextMenus_->BuildBackgroundMenu(commands::MouseButton::Right))
        return false;
    navigation_->AddMenuItems(menu_);
    menu_.ShowPopupAbsolute(screen.x, screen.y);
    return true;
}

// As in the IDE's own project explorer, a right click selects the node it is on first.
void docAddin::OnRightClick() {
    POINT screen{};
    GetCursorPos(&screen);
    POINT client = screen;
    ScreenToClient(tree_->hWnd(), &client);
    const tree::NodeRef node = tree_->HitTest(client);
    if (node) node->SetSelected(true);
    ShowTreeMenu(node.get(), screen);
}

// Shift+F10 and the menu key: the selected node's menu below its caption, or the background's
// menu at the document's corner.
void docAddin::OnContextMenuKey(HWND from) {
    if (from != tree_->hWnd()) {
        POINT corner{0, 0};
        ClientToScreen(hWnd_, &corner);
        ShowBackgroundMenu(corner);
        return;
    }
    const tree::NodeRef node = tree_->SelectedItem();
    RECT area{};
    if (!node ||
        !ItemRect(tree_->hWnd(), dynamic_cast<const TreeItemNode&>(*node).Item(), true, area)) {
        GetClientRect(tree_->hWnd(), &area);
        area.bottom = area.top;
    }
    POINT at{area.left, area.bottom};
    ClientToScreen(tree_->hWnd(), &at);
    ShowTreeMenu(node.get(), at);
}

// A command from a menu, a button or a key; a host that saves by itself hears of the change.
void docAddin::RunCommand(const std::function<explorer::Outcome()>& command) {
    try {
        const tree::UpdateScope update(*tree_);
        command();
    } catch (const std::exception&) {
        // The command has said what went wrong, or there was nothing to say.
    }
    if (Edited) Edited();
}

void docAddin::RunMenuCommand(std::string_view key) {
    if (!dispatcher_) return;
    const tree::NodeRef selected = tree_->SelectedItem();
    const std::string nodeKey = selected ? selected->Key() : std::string();
    RunCommand([&] { return dispatcher_->Run(key, 0, nodeKey); });
}

void docAddin::Resize(int left, int top, int width, int height) {
    MoveWindow(hWnd_, left, top, std::max(width, 0), std::max(height, 0), TRUE);
    LayOut();
}

// The buttons sit side by side along the top, the search box below them; the tree takes the
// rest, above the status line when there is one.
void docAddin::LayOut() {
    if (!navigation_) return;
    RECT client{};
    GetClientRect(hWnd_, &client);
    const auto scaled = [this](int size) { return MulDiv(size, static_cast<int>(dpi_), 96); };
    const int buttonHeight = scaled(kButtonHeight);
    const int buttonWidth = scaled(kButtonWidth);
    const int gap = scaled(kGap);
    MoveWindow(cmdCode_, gap, gap, buttonWidth, buttonHeight, TRUE);
    MoveWindow(cmdForm_, 2 * gap + buttonWidth, gap, buttonWidth, buttonHeight, TRUE);
    MoveWindow(navigation_->LocateButton(), 3 * gap + 2 * buttonWidth, gap, buttonWidth,
               buttonHeight, TRUE);
    const int searchTop = buttonHeight + 2 * gap;
    const int searchHeight = scaled(kSearchHeight);
    MoveWindow(navigation_->SearchBox(), gap, searchTop, std::max<int>(client.right - 2 * gap, 0),
               searchHeight, TRUE);
    const int treeTop = searchTop + searchHeight + gap;
    const int statusHeight = navigation_->StatusShown() ? scaled(kStatusHeight) : 0;
    const int treeBottom = std::max<int>(client.bottom - statusHeight, treeTop);
    MoveWindow(tree_->hWnd(), 0, treeTop, client.right, treeBottom - treeTop, TRUE);
    MoveWindow(navigation_->StatusLine(), gap, treeBottom, std::max<int>(client.right - 2 * gap, 0),
               statusHeight, TRUE);
}

void docAddin::ConnectTreeEvents() {
    TreeControlEvents& events = tree_->Events();
    events.Expand = [this](tree::Node& node) {
        if (!explorer_) return;
        const HCURSOR previous = SetCursor(LoadCursor(nullptr, IDC_WAIT));
        {
            const tree::UpdateScope update(*tree_);
            explorer_->HandleExpand(node);
        }
        SetCursor(previous);
    };
    events.Return = [this](tree::Node&) {
        if (dispatcher_) RunCommand([&] { return dispatcher_->ViewSelected(true); });
    };
    events.RightClick = [this] { OnRightClick(); };
    events.Collapse = [this](tree::Node& node) {
        deferred_.push_back({Deferred::Kind::Collapse, node.Key(), {}});
        PostMessageW(hWnd_, kRunDeferred, 0, 0);
    };
    events.LabelEdited = [this](tree::Node& node, std::string_view newText) {
        deferred_.push_back({Deferred::Kind::Rename, node.Key(), std::string(newText)});
        PostMessageW(hWnd_, kRunDeferred, 0, 0);
    };
    events.BeginDrag = [this](tree::Node& node) { BeginDrag(node); };
    events.SelectionChanged = [this](tree::Node* node) {
        if (SelectionChanged) SelectionChanged(node);
    };
}

void docAddin::RunDeferred() {
    std::vector<Deferred> work;
    work.swap(deferred_);
    for (const Deferred& item : work) {
        if (!explorer_ || !tree_->Exists(item.key)) continue;
        const tree::NodeRef node = tree_->Item(item.key);
        if (item.kind == Deferred::Kind::Rename) {
            RunCommand([&] { return explorer_->AfterLabelEdit(*node, item.newText); });
            continue;
        }
        try {
            const tree::UpdateScope update(*tree_);
            if (!node->Expanded()) explorer_->HandleCollapse(*node);
        } catch (const std::exception&) {
            // The tree keeps what it has; a reload puts it right.
        }
    }
}

// ---- dropping files ----

void docAddin::OnDropFiles(HDROP drop) {
    std::vector<std::filesystem::path> projects;
    std::vector<std::string> files;
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        std::wstring name(static_cast<std::size_t>(DragQueryFileW(drop, i, nullptr, 0)) + 1, L'\0');
        DragQueryFileW(drop, i, name.data(), static_cast<UINT>(name.size()));
        name.resize(wcslen(name.c_str()));
        const std::filesystem::path file(name);
        if (IsProjectFile(file)) {
            projects.push_back(file);
        } else {
            files.push_back(WideToUtf8(name));
        }
    }
    POINT at{};
    DragQueryPoint(drop, &at);
    DragFinish(drop);
    MapWindowPoints(hWnd_, tree_->hWnd(), &at, 1);
    if (!projects.empty() && ProjectFilesDropped) ProjectFilesDropped(projects);
    if (files.empty() || !explorer_) return;
    const tree::NodeRef target = tree_->HitTest(at);
    if (target) RunCommand([&] { return explorer_->DropFiles(files, *target); });
}

// ---- dragging a component onto a folder ----

void docAddin::BeginDrag(tree::Node& node) {
    if (drag_ || !explorer_) return;
    // Only components go into folders, whatever their names look like.
    if (node.Kind() != tree::NodeKind::Component) return;
    drag_ = std::make_unique<Drag>();
    drag_->key = node.Key();
    const auto& own = dynamic_cast<const TreeItemNode&>(node);
    drag_->image = TreeView_CreateDragImage(tree_->hWnd(), own.Item());
    if (drag_->image != nullptr) {
        ImageList_BeginDrag(drag_->image, 0, 0, 0);
        POINT at{};
        GetCursorPos(&at);
        ScreenToClient(tree_->hWnd(), &at);
        ImageList_DragEnter(tree_->hWnd(), at.x, at.y);
    }
    SetCapture(hWnd_);
}

tree::NodeRef docAddin::DropTarget(POINT client) const {
    if (!drag_) return nullptr;
    const tree::NodeRef target = tree_->HitTest(client);
    if (!target || target->Kind() != tree::NodeKind::Folder || !tree_->Exists(drag_->key)) {
        return nullptr;
    }
    const tree::NodeRef parent = tree_->Item(drag_->key)->Parent();
    return parent == target ? nullptr : target;
}

void docAddin::DragTo(POINT client) {
    if (!drag_) return;
    const tree::NodeRef target = DropTarget(client);
    const HTREEITEM item = target ? dynamic_cast<const TreeItemNode&>(*target).Item() : nullptr;
    if (drag_->image != nullptr) ImageList_DragShowNolock(FALSE);
    if (item != drag_->highlighted) {
        TreeView_SelectDropTarget(tree_->hWnd(), item);
        drag_->highlighted = item;
    }
    if (drag_->image != nullptr) {
        ImageList_DragShowNolock(TRUE);
        ImageList_DragMove(client.x, client.y);
    }
    SetCursor(LoadCursor(nullptr, target ? IDC_ARROW : IDC_NO));
}

void docAddin::EndDrag(bool drop, POINT client) {
    if (!drag_) return;
    const tree::NodeRef target = drop ? DropTarget(client) : nullptr;
    // Gone before the capture is released, which reports the end of the drag once more.
    const std::unique_ptr<Drag> drag = std::move(drag_);
    if (drag->image != nullptr) {
        ImageList_DragLeave(tree_->hWnd());
        ImageList_EndDrag();
        ImageList_Destroy(drag->image);
    }
    TreeView_SelectDropTarget(tree_->hWnd(), nullptr);
    if (GetCapture() == hWnd_) ReleaseCapture();
    if (!target || !explorer_) return;
    RunCommand([&] { return explorer_->DropComponent(drag->key, *target); });
}

// ---- messages ----

LRESULT CALLBACK docAddin::Proc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) {
    if (iMsg == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<docAddin*>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
    if (self == nullptr || self->hWnd_ != hWnd) return DefWindowProcW(hWnd, iMsg, wParam, lParam);
    try {
        return self->Handle(iMsg, wParam, lParam);
    } catch (const std::exception&) {
        // No error leaves a window procedure; the tree stays as it is.
        return 0;
    }
}

LRESULT docAddin::Handle(UINT iMsg, WPARAM wParam, LPARAM lParam) {
    if (!tree_) return DefWindowProcW(hWnd_, iMsg, wParam, lParam);
    switch (iMsg) {
        case WM_SIZE:
            LayOut();
            return 0;
        case WM_NOTIFY: {
            const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
            // The tree's own keys for the search, Locate and the errors; TRUE keeps them out of
            // the control's incremental search.
            if (header.code == TVN_KEYDOWN && header.hwndFrom == tree_->hWnd() &&
                navigation_->OnTreeKey(reinterpret_cast<const NMTVKEYDOWN&>(header).wVKey))
                return TRUE;
            return tree_->OnNotify(header);
        }
        case kRunDeferred:
            RunDeferred();
            return 0;
        case WM_DROPFILES:
            OnDropFiles(reinterpret_cast<HDROP>(wParam));
            return 0;
        case WM_COMMAND:
            if (LOWORD(wParam) == kSearchId && HIWORD(wParam) == EN_CHANGE) {
                navigation_->OnSearchChanged();
                return 0;
            }
            if (LOWORD(wParam) == kLocateButtonId) {
                navigation_->LocateCurrentLine();
                return 0;
            }
            if (dispatcher_ &&
                (LOWORD(wParam) == kCodeButtonId || LOWORD(wParam) == kFormButtonId)) {
                const bool code = LOWORD(wParam) == kCodeButtonId;
                RunCommand([&] { return dispatcher_->ViewSelected(code); });
                return 0;
            }
            break;
        case WM_CONTEXTMENU:
            // From the keyboard the position is -1, -1; a mouse click on the tree came as
            // NM_RCLICK already, and on the background as WM_RBUTTONUP.
            if (lParam == -1) OnContextMenuKey(reinterpret_cast<HWND>(wParam));
            return 0;
        case WM_RBUTTONUP: {
            POINT at{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
            ClientToScreen(hWnd_, &at);
            ShowBackgroundMenu(at);
            return 0;
        }
        case WM_MOUSEMOVE:
            if (drag_) {
                POINT at{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
                MapWindowPoints(hWnd_, tree_->hWnd(), &at, 1);
                DragTo(at);
                return 0;
            }
            break;
        case WM_LBUTTONUP:
            if (drag_) {
                POINT at{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
                MapWindowPoints(hWnd_, tree_->hWnd(), &at, 1);
                EndDrag(true, at);
                return 0;
            }
            break;
        case WM_CAPTURECHANGED:
            if (drag_ && reinterpret_cast<HWND>(lParam) != hWnd_) EndDrag(false, {});
            return 0;
        case WM_KEYDOWN:
            if (drag_ && wParam == VK_ESCAPE) {
                EndDrag(false, {});
                return 0;
            }
            break;
        default:
            break;
    }
    return DefWindowProcW(hWnd_, iMsg, wParam, lParam);
}

}  // namespace arbolet::windows
