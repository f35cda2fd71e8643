// The emulated IDE's main window.
#include "vb6host/main_window.h"

#include <algorithm>
#include <utility>

#include "vb6host/host_context.h"
#include "vb6host/tool_window.h"

namespace arbolet::vb6host {
namespace {

constexpr wchar_t kClass[] = L"ArboletVb6HostMain";
constexpr int kToolbarHeight = 28;
constexpr int kToolWindowWidth = 360;

void AppendControls(HMENU menu, const ControlList& controls) {
    for (const BarControlRef& control : controls.Items()) {
        if (!control->visible) continue;
        if (control->beginGroup && GetMenuItemCount(menu) > 0)
            AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
        if (control->type == kControlPopup) {
            HMENU sub = CreatePopupMenu();
            AppendControls(sub, *control->subBar->controls);
            AppendMenuW(menu, MF_POPUP | MF_STRING, reinterpret_cast<UINT_PTR>(sub),
                        control->caption.c_str());
        } else {
            AppendMenuW(menu, MF_STRING, control->commandId, control->caption.c_str());
        }
    }
}

}  // namespace

MainWindow::MainWindow(HostContext& context) : context_(context) {
    static bool registered = false;
    if (!registered) {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = &MainWindow::Proc;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
        windowClass.hbrBackground = GetSysColorBrush(COLOR_APPWORKSPACE);
        windowClass.lpszClassName = kClass;
        RegisterClassW(&windowClass);
        registered = true;
    }
    window_ = CreateWindowExW(0, kClass, L"Project1 - Microsoft Visual Basic [design]",
                              WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0, 1000, 700, nullptr,
                              nullptr, GetModuleHandleW(nullptr), this);
    context_.SetMainWindow(window_);
    context_.Bars().SetOnChanged([this] { Rebuild(); });
    Rebuild();
}

MainWindow::~MainWindow() {
    context_.Bars().SetOnChanged({});
    context_.CloseToolWindows();
    if (window_ != nullptr && IsWindow(window_)) DestroyWindow(window_);
    if (menu_ != nullptr) DestroyMenu(menu_);
}

void MainWindow::Show() {
    ShowWindow(window_, SW_SHOW);
    UpdateWindow(window_);
}

void MainWindow::Rebuild() {
    if (window_ == nullptr || rebuilding_) return;
    rebuilding_ = true;
    HMENU menu = CreateMenu();
    if (const CommandBarRef bar = context_.Bars().FindBar(L"Menu Bar")) {
        AppendControls(menu, *bar->controls);
    }
    SetMenu(window_, menu);
    if (menu_ != nullptr) DestroyMenu(menu_);
    menu_ = menu;

    for (const auto& [button, control] : buttons_)
        DestroyWindow(button);
    buttons_.clear();
    if (const CommandBarRef bar = context_.Bars().FindBar(L"Standard"); bar && bar->visible) {
        HDC dc = GetDC(window_);
        int x = 4;
        for (const BarControlRef& control : bar->controls->Items()) {
            if (!control->visible || control->type != kControlButton) continue;
            const std::wstring text = PlainCaption(control->caption);
            SIZE size{};
            GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
            const int width = size.cx + 16;
            HWND button =
                CreateWindowExW(0, L"BUTTON", text.c_str(), WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON,
                                x, 2, width, kToolbarHeight - 4, window_,
                                reinterpret_cast<HMENU>(static_cast<UINT_PTR>(control->commandId)),
                                GetModuleHandleW(nullptr), nullptr);
            SendMessageW(button, WM_SETFONT,
                         reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
            EnableWindow(button, control->Enabled());
            buttons_.emplace_back(button, control);
            x += width + 2;
        }
        ReleaseDC(window_, dc);
    }
    rebuilding_ = false;
}

bool MainWindow::ChooseMenuItem(const BarControlRef& control) {
    if (!control || control->Deleted() || !control->visible || !control->Enabled()) return false;
    UpdateMenuStates(menu_);
    const UINT state = GetMenuState(menu_, control->commandId, MF_BYCOMMAND);
    if (state == static_cast<UINT>(-1) || (state & (MF_DISABLED | MF_GRAYED))) return false;
    SendMessageW(window_, WM_COMMAND, MAKEWPARAM(control->commandId, 0), 0);
    return true;
}

HWND MainWindow::ButtonOf(const BarControl& control) const {
    for (const auto& [button, item] : buttons_) {
        if (item.lock().get() == &control) return button;
    }
    return nullptr;
}

bool MainWindow::PressToolbarButton(const BarControlRef& control) {
    HWND button = control ? ButtonOf(*control) : nullptr;
    if (button == nullptr) return false;
    EnableWindow(button, control->Enabled());
    if (!IsWindowEnabled(button)) return false;
    SendMessageW(button, BM_CLICK, 0, 0);
    return true;
}

void MainWindow::UpdateMenuStates(HMENU menu) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        if (HMENU sub = GetSubMenu(menu, i)) {
            UpdateMenuStates(sub);
            continue;
        }
        const UINT id = GetMenuItemID(menu, i);
        if (const BarControlRef control = context_.Bars().FindCommand(id)) {
            EnableMenuItem(menu, id, MF_BYCOMMAND | (control->Enabled() ? MF_ENABLED : MF_GRAYED));
        }
    }
}

void MainWindow::LayOut(int width, int height) {
    std::vector<std::shared_ptr<ToolWindow>> shown;
    for (const auto& window : context_.ToolWindows()) {
        if (window->Visible()) shown.push_back(window);
    }
    if (shown.empty()) return;
    const int top = kToolbarHeight;
    const int each = std::max(1, (height - top) / static_cast<int>(shown.size()));
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const int y = top + static_cast<int>(i) * each;
        shown[i]->Place({std::max(0, width - kToolWindowWidth), y, width, y + each});
    }
}

LRESULT CALLBACK MainWindow::Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr || self->window_ != window) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    return self->Handle(message, wParam, lParam);
}

LRESULT MainWindow::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND:
            if (const BarControlRef control = context_.Bars().FindCommand(LOWORD(wParam))) {
                context_.RunControl(control);
                return 0;
            }
            break;
        case WM_INITMENUPOPUP:
            UpdateMenuStates(reinterpret_cast<HMENU>(wParam));
            return 0;
        case WM_SIZE:
            LayOut(LOWORD(lParam), HIWORD(lParam));
            return 0;
        case WM_CLOSE:
            ShowWindow(window_, SW_HIDE);
            return 0;
        case WM_NCDESTROY: {
            HWND window = std::exchange(window_, nullptr);
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            return DefWindowProcW(window, message, wParam, lParam);
        }
    }
    return DefWindowProcW(window_, message, wParam, lParam);
}

}  // namespace arbolet::vb6host
