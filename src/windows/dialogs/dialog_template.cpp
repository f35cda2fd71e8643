// The DLGTEMPLATE layout: a header, the menu, class, caption and font, then each item aligned
// to a DWORD with its own class, text and creation data.
#include "windows/dialogs/dialog_template.h"

#include <string>

namespace arbolet::windows::dialogs {
namespace {

constexpr std::size_t kCountIndex = 4;  // cdit, the item count, in words from the start

}  // namespace

DialogTemplate::DialogTemplate(std::string_view caption, DWORD style, short cx, short cy) {
    style |= DS_SETFONT;
    AddWord(LOWORD(style));
    AddWord(HIWORD(style));
    AddWord(0);  // extended style
    AddWord(0);
    AddWord(0);  // item count, raised by each control
    AddWord(0);  // x, y: the dialog places itself
    AddWord(0);
    AddWord(static_cast<WORD>(cx));
    AddWord(static_cast<WORD>(cy));
    AddWord(0);  // no menu
    AddWord(0);  // the standard dialog class
    AddText(caption);
    AddWord(8);  // point size
    AddWideText(L"MS Shell Dlg");
}

void DialogTemplate::AddControl(ControlClass controlClass, std::string_view text, WORD id,
                                DWORD style, short x, short y, short cx, short cy) {
    AddItemHeader(style, id, x, y, cx, cy);
    AddWord(0xFFFF);
    AddWord(static_cast<WORD>(controlClass));
    AddText(text);
    AddWord(0);  // no creation data
}

void DialogTemplate::AddControl(std::wstring_view className, std::string_view text, WORD id,
                                DWORD style, short x, short y, short cx, short cy) {
    AddItemHeader(style, id, x, y, cx, cy);
    AddWideText(className);
    AddText(text);
    AddWord(0);
}

const DLGTEMPLATE* DialogTemplate::get() const noexcept {
    return reinterpret_cast<const DLGTEMPLATE*>(words_.data());
}

void DialogTemplate::AlignToDword() {
    if (words_.size() % 2 != 0) words_.push_back(0);
}

void DialogTemplate::AddWord(WORD value) {
    words_.push_back(value);
}

// Captions are ANSI text in the user's code page, as every other text of the add-in.
void DialogTemplate::AddText(std::string_view text) {
    const int length =
        MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
    AddWideText(wide);
}

void DialogTemplate::AddWideText(std::wstring_view text) {
    for (const wchar_t c : text)
        AddWord(static_cast<WORD>(c));
    AddWord(0);
}

void DialogTemplate::AddItemHeader(DWORD style, WORD id, short x, short y, short cx, short cy) {
    AlignToDword();
    AddWord(LOWORD(style | WS_CHILD | WS_VISIBLE));
    AddWord(HIWORD(style | WS_CHILD | WS_VISIBLE));
    AddWord(0);  // extended style
    AddWord(0);
    AddWord(static_cast<WORD>(x));
    AddWord(static_cast<WORD>(y));
    AddWord(static_cast<WORD>(cx));
    AddWord(static_cast<WORD>(cy));
    AddWord(id);
    ++words_[kCountIndex];
}

void CentreOnScreen(HWND hDlg) noexcept {
    const HWND owner = GetWindow(hDlg, GW_OWNER);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(owner != nullptr ? owner : hDlg, MONITOR_DEFAULTTOPRIMARY),
                    &monitor);
    RECT rc;
    GetWindowRect(hDlg, &rc);
    const RECT& screen = monitor.rcMonitor;
    const int x = screen.left + (screen.right - screen.left - (rc.right - rc.left)) / 2;
    const int y = screen.top + (screen.bottom - screen.top - (rc.bottom - rc.top)) / 2;
    SetWindowPos(hDlg, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace arbolet::windows::dialogs
