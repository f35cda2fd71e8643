// The search box, the Locate button, F8 and the status line of the document.
#include "windows/document/doc_navigation.h"

#include <commctrl.h>

#include <exception>

#include "check/check_config.h"
#include "disk/vb_path.h"
#include "explorer/node_keys.h"
#include "explorer/procedure_metrics.h"
#include "windows/base/ansi_text.h"
#include "windows/document/doc_addin.h"
#include "windows/options/settings.h"

namespace arbolet::windows {
namespace {

constexpr const char* kLocateKey = "LocateCurrentLine";
constexpr const char* kNextErrorKey = "NextError";
constexpr const char* kPreviousErrorKey = "PreviousError";
constexpr UINT_PTR kSearchSubclass = 1;

HMODULE ModuleOf(HWND window) {
    return reinterpret_cast<HMODULE>(GetWindowLongPtrW(window, GWLP_HINSTANCE));
}

bool Pressed(int virtualKey) {
    return (GetKeyState(virtualKey) & 0x8000) != 0;
}

}  // namespace

DocNavigation::DocNavigation(docAddin& document, HWND parent, UINT searchId, UINT locateId)
    : document_(document) {
    search_ = CreateWindowExW(WS_EX_CLIENTEDGE, L"EDIT", L"",
                              WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL, 0, 0, 100, 20,
                              parent, reinterpret_cast<HMENU>(static_cast<UINT_PTR>(searchId)),
                              ModuleOf(parent), nullptr);
    SendMessageW(search_, EM_SETCUEBANNER, FALSE,
                 reinterpret_cast<LPARAM>(L"Find (Ctrl+F); :name finds procedures"));
    SetWindowSubclass(search_, &DocNavigation::SearchProc, kSearchSubclass,
                      reinterpret_cast<DWORD_PTR>(this));
    locate_ = CreateWindowExW(
        0, L"BUTTON", L"&Locate", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 0, 80, 24, parent,
        reinterpret_cast<HMENU>(static_cast<UINT_PTR>(locateId)), ModuleOf(parent), nullptr);
    status_ = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | SS_LEFTNOWORDWRAP | SS_CENTERIMAGE, 0,
                              0, 100, 18, parent, nullptr, ModuleOf(parent), nullptr);
}

DocNavigation::~DocNavigation() {
    if (IsWindow(search_))
        RemoveWindowSubclass(search_, &DocNavigation::SearchProc, kSearchSubclass);
}

void DocNavigation::SetFont(HFONT font) {
    for (HWND child : {search_, locate_, status_})
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

void DocNavigation::Reloaded() {
    before_.reset();
    procedures_.Clear();
    if (GetWindowTextLengthW(search_) > 0) {
        quiet_ = true;
        SetWindowTextW(search_, L"");
        quiet_ = false;
    }
    explorer::ProjectExplorer* explorer = document_.Explorer();
    if (explorer == nullptr) return;
    census_.Recount(*explorer, document_.treMain().Nodes());
    limits_.clear();
    explorer->CodeShown = [this](tree::Node& component, std::string_view code) {
        ShowMetricsOf(component, code);
    };
    explorer->ComponentCodeChanged = [this](const std::string& key, bool gone) {
        procedures_.Forget(key);
        if (const auto* current = document_.Explorer()) census_.Recheck(*current, key, gone);
        UpdateStatus();
    };
    UpdateStatus();
}

void DocNavigation::ShowMetricsOf(tree::Node& component, std::string_view code) {
    try {
        if (options::ShowMetrics()) explorer::ShowMetrics(component, code, LimitsFor(component));
    } catch (const std::exception&) {
        // Without the option's value the tips stay as they were.
    }
}

// A configuration that cannot be read or used sets no limits; `arbolet check` says why.
explorer::MetricLimits DocNavigation::LimitsFor(const tree::Node& component) {
    explorer::ProjectExplorer* explorer = document_.Explorer();
    const env::VBProjectRef project = explorer ? explorer->ProjectOfNode(component) : nullptr;
    if (!project) return {};
    const std::filesystem::path folder = disk::PathFromUtf8(project->FileName()).parent_path();
    const std::string key = WideToUtf8(folder.wstring());
    const auto known = limits_.find(key);
    if (known != limits_.end()) return known->second;
    explorer::MetricLimits limits;
    try {
        if (const auto file = check::FindConfig(folder)) {
            const check::QualityLimits read = check::LoadConfig(*file, WideToUtf8(file->wstring()));
            limits = {read.maxNesting, read.maxProcedureLines, read.maxComplexity};
        }
    } catch (const std::exception&) {
        limits = {};
    }
    return limits_[key] = limits;
}

void DocNavigation::UpdateStatus() {
    const std::string text = explorer::CensusText(census_.Count());
    if (text == statusText_) return;
    const bool relayout = text.empty() != statusText_.empty();
    statusText_ = text;
    SetWindowTextW(status_, Utf8ToWide(text).c_str());
    ShowWindow(status_, text.empty() ? SW_HIDE : SW_SHOWNA);
    if (relayout) document_.LayOut();
}

// ---- find as you type ----

void DocNavigation::SetSearchText(std::string_view text) {
    quiet_ = true;
    SetWindowTextW(search_, Utf8ToWide(text).c_str());
    quiet_ = false;
    OnSearchChanged();
}

std::string DocNavigation::SearchText() const {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(search_)) + 1, L'\0');
    GetWindowTextW(search_, text.data(), static_cast<int>(text.size()));
    text.resize(wcslen(text.c_str()));
    return WideToUtf8(text);
}

void DocNavigation::OnSearchChanged() {
    explorer::ProjectExplorer* explorer = document_.Explorer();
    if (quiet_ || explorer == nullptr) return;
    const std::string typed = SearchText();
    const explorer::SearchQuery query = explorer::ParseSearch(typed);
    TreeControl& tree = document_.treMain();
    try {
        if (query.kind == explorer::SearchQuery::Kind::None) {
            if (!before_) return;
            const explorer::TreeSnapshot snapshot = std::move(*before_);
            before_.reset();
            explorer::RestoreSnapshot(*explorer, tree, snapshot);
            ScrollTo(snapshot.firstVisible);
            return;
        }
        if (!before_) {
            before_ = explorer::TakeSnapshot(tree);
            before_->firstVisible = FirstVisibleKey();
        }
        const HCURSOR previous = SetCursor(LoadCursor(nullptr, IDC_WAIT));
        explorer::ApplySearch(*explorer, tree, query, procedures_);
        SetCursor(previous);
        SendMessageW(tree.hWnd(), WM_VSCROLL, SB_TOP, 0);
    } catch (const std::exception&) {
        // The tree keeps what the search made of it; clearing the box builds it anew.
    }
}

void DocNavigation::OpenFirstMatch() {
    const tree::NodeRef node = explorer::FirstMatch(document_.treMain().Nodes());
    if (!node) {
        MessageBeep(MB_OK);
        return;
    }
    node->SetSelected(true);
    if (node->Kind() == tree::NodeKind::CodeLine) {
        document_.RunMenuCommand(explorer::GotoItemKey(node->Key()));
    } else if (document_.dispatcher_) {
        document_.RunCommand([&] { return document_.dispatcher_->ViewSelected(true); });
    }
}

void DocNavigation::ClearSearch() {
    SetSearchText("");
    SetFocus(document_.treMain().hWnd());
}

std::string DocNavigation::FirstVisibleKey() const {
    TreeControl& tree = document_.treMain();
    const HTREEITEM first = TreeView_GetFirstVisible(tree.hWnd());
    const tree::NodeRef node = first != nullptr ? tree.NodeOf(first) : nullptr;
    return node ? node->Key() : std::string();
}

void DocNavigation::ScrollTo(const std::string& firstVisible) {
    TreeControl& tree = document_.treMain();
    if (firstVisible.empty() || !tree.Exists(firstVisible)) return;
    const auto& node = dynamic_cast<const TreeItemNode&>(*tree.Item(firstVisible));
    TreeView_Select(tree.hWnd(), node.Item(), TVGN_FIRSTVISIBLE);
}

// ---- where the caret is, and the errors ----

void DocNavigation::Select(const tree::NodeRef& node) {
    node->EnsureVisible();
    node->SetSelected(true);
}

bool DocNavigation::LocateCurrentLine() {
    std::optional<explorer::CodeLocation> location;
    try {
        if (document_.CurrentCodeLocation) location = document_.CurrentCodeLocation();
    } catch (const std::exception&) {
        location.reset();
    }
    if (!location || !Locate(*location)) {
        MessageBeep(MB_OK);
        return false;
    }
    return true;
}

bool DocNavigation::Locate(const explorer::CodeLocation& location) {
    explorer::ProjectExplorer* explorer = document_.Explorer();
    if (explorer == nullptr) return false;
    // The component may be filtered out of a search's tree.
    if (before_) ClearSearch();
    tree::NodeRef node;
    try {
        const tree::UpdateScope update(document_.treMain());
        node = explorer::LocateLine(*explorer, document_.treMain().Nodes(), location);
    } catch (const std::exception&) {
        return false;
    }
    if (!node) return false;
    Select(node);
    return true;
}

bool DocNavigation::StepToError(bool forward) {
    explorer::ProjectExplorer* explorer = document_.Explorer();
    if (explorer == nullptr) return false;
    TreeControl& tree = document_.treMain();
    tree::NodeRef node;
    try {
        const tree::UpdateScope update(tree);
        const tree::NodeRef from = tree.SelectedItem();
        node = explorer::StepToError(*explorer, tree.Nodes(), census_, from.get(), forward);
    } catch (const std::exception&) {
        node = nullptr;
    }
    if (!node) {
        MessageBeep(MB_OK);
        return false;
    }
    Select(node);
    return true;
}

bool DocNavigation::OnTreeKey(WORD virtualKey) {
    const bool control = Pressed(VK_CONTROL);
    if (control && virtualKey == 'F') {
        SetFocus(search_);
        SendMessageW(search_, EM_SETSEL, 0, -1);
        return true;
    }
    if (control && virtualKey == 'L') {
        LocateCurrentLine();
        return true;
    }
    if (virtualKey == VK_F8 && !control) {
        StepToError(!Pressed(VK_SHIFT));
        return true;
    }
    return false;
}

void DocNavigation::AddMenuItems(popupmenu::MenuItems& menu) const {
    menu.AddItem("-");
    menu.AddItem("&Locate Current Line\tCtrl+L", {}, 0, 0, -1, false, true, kLocateKey);
    menu.AddItem("&Next Error\tF8", {}, 0, 0, -1, false, true, kNextErrorKey);
    menu.AddItem("Pre&vious Error\tShift+F8", {}, 0, 0, -1, false, true, kPreviousErrorKey);
}

bool DocNavigation::RunMenuItem(std::string_view key) {
    if (key == kLocateKey) {
        LocateCurrentLine();
    } else if (key == kNextErrorKey || key == kPreviousErrorKey) {
        StepToError(key == kNextErrorKey);
    } else {
        return false;
    }
    return true;
}

// Esc and Enter belong to the search; a single-line edit box would only beep at them.
LRESULT CALLBACK DocNavigation::SearchProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam,
                                           UINT_PTR, DWORD_PTR self) {
    auto* navigation = reinterpret_cast<DocNavigation*>(self);
    try {
        if (iMsg == WM_KEYDOWN && wParam == VK_ESCAPE) {
            navigation->ClearSearch();
            return 0;
        }
        if (iMsg == WM_KEYDOWN && wParam == VK_RETURN) {
            navigation->OpenFirstMatch();
            return 0;
        }
        if (iMsg == WM_KEYDOWN && wParam == VK_DOWN) {
            SetFocus(navigation->document_.treMain().hWnd());
            return 0;
        }
        if (iMsg == WM_CHAR && (wParam == VK_ESCAPE || wParam == VK_RETURN)) return 0;
        if (iMsg == WM_GETDLGCODE)
            return DLGC_WANTALLKEYS | DefSubclassProc(hWnd, iMsg, wParam, lParam);
    } catch (const std::exception&) {
        return 0;
    }
    return DefSubclassProc(hWnd, iMsg, wParam, lParam);
}

}  // namespace arbolet::windows
