// The tool window's tree view, read and opened through its window messages.
#include "vb6host/tree_dump.h"

#include <commctrl.h>

#include <algorithm>
#include <functional>

#include "windows/base/ansi_text.h"

namespace arbolet::vb6host {
namespace {

struct NodeInfo {
    std::wstring text;
    bool expanded = false;
};

NodeInfo Read(HWND tree, HTREEITEM item) {
    wchar_t text[1024] = {};
    TVITEMW info{};
    info.mask = TVIF_TEXT | TVIF_STATE | TVIF_HANDLE;
    info.hItem = item;
    info.pszText = text;
    info.cchTextMax = 1024;
    info.stateMask = TVIS_EXPANDED;
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&info));
    return {text, (info.state & TVIS_EXPANDED) != 0};
}

HTREEITEM Next(HWND tree, HTREEITEM item, UINT how) {
    return reinterpret_cast<HTREEITEM>(
        SendMessageW(tree, TVM_GETNEXTITEM, how, reinterpret_cast<LPARAM>(item)));
}

// Every node, parents before children, in the tree's order; stops when `visit` says so.
void Walk(HWND tree, const std::function<bool(HTREEITEM)>& visit) {
    std::vector<HTREEITEM> pending;
    for (HTREEITEM item = Next(tree, nullptr, TVGN_ROOT); item; item = Next(tree, item, TVGN_NEXT))
        pending.push_back(item);
    std::vector<HTREEITEM> order;
    // Depth first with an explicit stack, so that deep code trees cannot exhaust the stack.
    std::vector<HTREEITEM> stack(pending.rbegin(), pending.rend());
    while (!stack.empty()) {
        const HTREEITEM item = stack.back();
        stack.pop_back();
        if (!visit(item)) return;
        std::vector<HTREEITEM> children;
        for (HTREEITEM child = Next(tree, item, TVGN_CHILD); child;
             child = Next(tree, child, TVGN_NEXT))
            children.push_back(child);
        stack.insert(stack.end(), children.rbegin(), children.rend());
    }
}

BOOL CALLBACK TreeViewFinder(HWND window, LPARAM result) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    if (_wcsicmp(name, WC_TREEVIEWW) != 0) return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

}  // namespace

HWND FindTreeView(HWND root) {
    HWND found = nullptr;
    EnumChildWindows(root, &TreeViewFinder, reinterpret_cast<LPARAM>(&found));
    return found;
}

int ExpandNodes(HWND tree, const std::vector<std::wstring>& names, bool all) {
    int opened = 0;
    // Opening a node may add children (a component's code), so the walk starts again after
    // each one; a node is opened at most once.
    std::vector<HTREEITEM> done;
    for (bool more = true; more && opened < 100000;) {
        more = false;
        Walk(tree, [&](HTREEITEM item) {
            if (std::find(done.begin(), done.end(), item) != done.end()) return true;
            const NodeInfo node = Read(tree, item);
            const bool wanted =
                all ? Next(tree, item, TVGN_CHILD) != nullptr
                    : std::find(names.begin(), names.end(), node.text) != names.end();
            if (!wanted || node.expanded) return true;
            done.push_back(item);
            SendMessageW(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
            SendMessageW(tree, WM_KEYDOWN, VK_ADD, 0);
            SendMessageW(tree, WM_KEYUP, VK_ADD, 0);
            ++opened;
            more = true;
            return false;
        });
    }
    return opened;
}

int CountNodes(HWND tree) {
    int count = 0;
    Walk(tree, [&](HTREEITEM) {
        ++count;
        return true;
    });
    return count;
}

bool HasNodeText(HWND tree, const std::wstring& text) {
    return FindNode(tree, text) != nullptr;
}

HTREEITEM FindNode(HWND tree, const std::wstring& text) {
    HTREEITEM found = nullptr;
    Walk(tree, [&](HTREEITEM item) {
        if (Read(tree, item).text == text) found = item;
        return found == nullptr;
    });
    return found;
}

std::wstring NodeText(HWND tree, HTREEITEM item) {
    return item != nullptr ? Read(tree, item).text : std::wstring();
}

std::wstring ParentText(HWND tree, HTREEITEM item) {
    return NodeText(tree, Next(tree, item, TVGN_PARENT));
}

bool NodeScreenRect(HWND tree, HTREEITEM item, RECT& area) {
    SendMessageW(tree, TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
    // TVM_GETITEMRECT takes the item in the rectangle it fills.
    *reinterpret_cast<HTREEITEM*>(&area) = item;
    if (!SendMessageW(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&area))) return false;
    MapWindowPoints(tree, nullptr, reinterpret_cast<POINT*>(&area), 2);
    return true;
}

}  // namespace arbolet::vb6host
