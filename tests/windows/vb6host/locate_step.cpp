// The caret in a code window, Ctrl+L in the tool window's tree, and the selected node's key.
#include "vb6host/locate_step.h"

#include <commctrl.h>

#include <fstream>
#include <sstream>

#include "support/test_window.h"
#include "windows/base/ansi_text.h"

namespace arbolet::vb6host {
namespace {

env::VBComponentRef FindComponent(HostContext& context, const std::string& name) {
    const auto projects = context.Environment().VBProjects();
    for (std::int32_t p = 1; p <= projects->Count(); ++p) {
        const auto components = projects->Item(p)->VBComponents();
        for (std::int32_t c = 1; c <= components->Count(); ++c) {
            env::VBComponentRef component = components->Item(c);
            if (component->Name() == name) return component;
        }
    }
    return nullptr;
}

// The item after `item` in tree order over every item the control holds, open or not.
HTREEITEM NextInTreeOrder(HWND tree, HTREEITEM item) {
    if (const HTREEITEM child = TreeView_GetChild(tree, item)) return child;
    for (HTREEITEM at = item; at != nullptr; at = TreeView_GetParent(tree, at)) {
        if (const HTREEITEM next = TreeView_GetNextSibling(tree, at)) return next;
    }
    return nullptr;
}

}  // namespace

int LocateWithKeyboard(HostContext& context, HWND main, HWND tree, const std::wstring& component,
                       std::int32_t line, Report& report) {
    const env::VBComponentRef code = FindComponent(context, windows::WideToUtf8(component));
    if (!report.Check(code != nullptr,
                      "the component " + windows::WideToUtf8(component) + " exists"))
        return -1;
    context.SetActiveCodeComponent(code);
    CodePaneState& pane = context.CodePane(code.get());
    pane.shown = true;
    for (std::int32_t i = 0; i < 4; i += 2) {
        pane.selection[i] = line;
        pane.selection[i + 1] = 1;
    }
    windows::testing::Activate(main);
    SetFocus(tree);
    windows::testing::PumpMessagesFor(50);
    INPUT keys[4]{};
    for (INPUT& key : keys)
        key.type = INPUT_KEYBOARD;
    keys[0].ki.wVk = VK_CONTROL;
    keys[1].ki.wVk = 'L';
    keys[2].ki.wVk = 'L';
    keys[2].ki.dwFlags = KEYEVENTF_KEYUP;
    keys[3].ki.wVk = VK_CONTROL;
    keys[3].ki.dwFlags = KEYEVENTF_KEYUP;
    SendInput(4, keys, sizeof(INPUT));
    windows::testing::PumpMessagesFor(300);
    const HTREEITEM selected = TreeView_GetSelection(tree);
    int place = 0;
    for (HTREEITEM item = TreeView_GetRoot(tree); item != nullptr;
         item = NextInTreeOrder(tree, item), ++place) {
        if (item == selected) return place;
    }
    return -1;
}

std::string KeyInDump(const std::wstring& dump, int place) {
    std::ifstream file{std::filesystem::path(dump), std::ios::binary};
    std::stringstream text;
    text << file.rdbuf();
    const std::string json = text.str();
    // Every node writes its key first, in tree order; no other member is named "key".
    constexpr std::string_view kKey = "\"key\":\"";
    std::size_t at = 0;
    for (int i = 0; place >= 0 && i <= place; ++i) {
        at = json.find(kKey, at);
        if (at == std::string::npos) return {};
        at += kKey.size();
    }
    const std::size_t end = json.find('"', at);
    return place >= 0 && end != std::string::npos ? json.substr(at, end - at) : std::string();
}

}  // namespace arbolet::vb6host
