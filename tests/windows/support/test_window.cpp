// Test windows that count the messages their own procedure sees.
#include "support/test_window.h"

#include <iterator>

namespace arbolet::windows::testing {
namespace {

constexpr const char* kClassName = "ArboletTestWindow";

ATOM RegisterTestClass(WNDPROC proc) {
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = proc;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    windowClass.lpszClassName = kClassName;
    return RegisterClassA(&windowClass);
}

}  // namespace

TestWindow::TestWindow(const char* title, bool visible) {
    static const ATOM registered = RegisterTestClass(&TestWindow::Proc);
    (void)registered;
    hWnd_ = CreateWindowExA(0, kClassName, title, WS_OVERLAPPEDWINDOW, 100, 100, 400, 300, nullptr,
                            nullptr, GetModuleHandleA(nullptr), this);
    if (visible && hWnd_ != nullptr) {
        ShowWindow(hWnd_, SW_SHOW);
        UpdateWindow(hWnd_);
    }
    PumpMessages();
}

TestWindow::~TestWindow() {
    Destroy();
}

void TestWindow::Destroy() noexcept {
    if (hWnd_ != nullptr && IsWindow(hWnd_)) DestroyWindow(hWnd_);
    PumpMessages();
}

int TestWindow::OwnCalls(UINT iMsg) const {
    const auto found = calls_.find(iMsg);
    return found == calls_.end() ? 0 : found->second;
}

WNDPROC TestWindow::OwnProc() noexcept {
    return &TestWindow::Proc;
}

LRESULT CALLBACK TestWindow::Proc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) {
    if (iMsg == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTA*>(lParam);
        SetWindowLongPtrA(hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<TestWindow*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
    if (self != nullptr) ++self->calls_[iMsg];
    if (iMsg >= WM_APP && iMsg < WM_APP + 0x100) return kOwnProcResult;
    if (iMsg == WM_NCDESTROY && self != nullptr) self->hWnd_ = nullptr;
    return DefWindowProcA(hWnd, iMsg, wParam, lParam);
}

void PumpMessages() noexcept {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

void PumpMessagesFor(DWORD milliseconds) noexcept {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    do {
        PumpMessages();
        Sleep(10);
    } while (GetTickCount64() < end);
    PumpMessages();
}

bool Activate(HWND hWnd) noexcept {
    SetForegroundWindow(hWnd);
    SetActiveWindow(hWnd);
    SetFocus(hWnd);
    // The X server answers focus requests asynchronously.
    for (int attempt = 0; attempt < 50 && GetForegroundWindow() != hWnd; ++attempt) {
        PumpMessages();
        Sleep(20);
    }
    PumpMessages();
    return GetForegroundWindow() == hWnd;
}

void PressKey(WORD virtualKey) noexcept {
    INPUT inputs[2]{};
    inputs[0].type = INPUT_KEYBOARD;
    inputs[0].ki.wVk = virtualKey;
    inputs[1] = inputs[0];
    inputs[1].ki.dwFlags = KEYEVENTF_KEYUP;
    SendInput(2, inputs, sizeof(INPUT));
}

INPUT MouseAt(POINT screen, DWORD flags) noexcept {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = MulDiv(screen.x, 65535, GetSystemMetrics(SM_CXSCREEN) - 1);
    input.mi.dy = MulDiv(screen.y, 65535, GetSystemMetrics(SM_CYSCREEN) - 1);
    input.mi.dwFlags = flags | MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    return input;
}

void DragMouse(POINT from, POINT to) noexcept {
    INPUT gesture[] = {MouseAt(from, 0),
                       MouseAt(from, MOUSEEVENTF_LEFTDOWN),
                       MouseAt({from.x + 12, from.y + 12}, 0),
                       MouseAt({to.x, to.y + 1}, 0),
                       MouseAt(to, 0),
                       MouseAt(to, MOUSEEVENTF_LEFTUP)};
    SendInput(static_cast<UINT>(std::size(gesture)), gesture, sizeof(INPUT));
}

POINT Centre(const RECT& area) noexcept {
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

}  // namespace arbolet::windows::testing
