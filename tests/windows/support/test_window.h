// Real top-level windows for the Windows tests: a window class whose procedure counts what it
// gets and answers with a known value, and helpers to pump the thread's messages.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>

namespace arbolet::windows::testing {

// What every test window's own procedure answers, so that tests can tell its result from a
// client's.
inline constexpr LRESULT kOwnProcResult = 0x5151;

class TestWindow {
  public:
    // Creates a top-level window. Only windows that take the keyboard focus need to be shown:
    // without a window manager, Wine waits two seconds for a shown window to be destroyed.
    explicit TestWindow(const char* title = "Arbolet test window", bool visible = false);
    ~TestWindow();
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    HWND get() const noexcept { return hWnd_; }
    // How often the window's own procedure saw a message.
    int OwnCalls(UINT iMsg) const;
    // The window procedure the class registered, to tell whether the window is subclassed.
    static WNDPROC OwnProc() noexcept;
    // Destroys the window now, leaving the handle stale.
    void Destroy() noexcept;

  private:
    static LRESULT CALLBACK Proc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam);
    HWND hWnd_ = nullptr;
    std::map<UINT, int> calls_;
};

// Handles every message waiting for this thread.
void PumpMessages() noexcept;
// Handles this thread's messages for a while, for input that the system delivers late.
void PumpMessagesFor(DWORD milliseconds) noexcept;
// Brings a window to the front with the keyboard focus, as a user's click would; false when the
// system would not.
bool Activate(HWND hWnd) noexcept;
// Sends a key press and release through the system's input queue.
void PressKey(WORD virtualKey) noexcept;
// A mouse event at a point of the screen, moving the pointer there, for SendInput; `flags` adds
// the buttons (MOUSEEVENTF_LEFTDOWN, ...).
INPUT MouseAt(POINT screen, DWORD flags) noexcept;
// Drags with the left button from one point of the screen to another, all in one go: a control
// watches for the drag in a loop of its own after the press.
void DragMouse(POINT from, POINT to) noexcept;
// The middle of a rectangle.
POINT Centre(const RECT& area) noexcept;

}  // namespace arbolet::windows::testing
