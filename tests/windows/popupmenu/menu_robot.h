// Plays a script of steps while a menu is open. TrackPopupMenu does not return until the menu
// closes, so the steps run from a thread timer, which the menu's own message loop dispatches.
// When the script is over and the menu is still open, the robot presses Escape so that a test
// that went wrong fails instead of hanging.
#pragma once

#include <windows.h>

#include <functional>
#include <vector>

namespace arbolet::windows::testing {

class MenuRobot {
  public:
    using Step = std::function<void()>;
    explicit MenuRobot(std::vector<Step> steps, UINT intervalMs = 120);
    ~MenuRobot();
    MenuRobot(const MenuRobot&) = delete;
    MenuRobot& operator=(const MenuRobot&) = delete;

    // A step that presses one key.
    static Step Key(WORD virtualKey);
    // The visible menu windows of this thread, first opened first.
    static std::vector<HWND> OpenMenuWindows();

  private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD);
    std::vector<Step> steps_;
    std::size_t next_ = 0;
    int escapes_ = 0;
    UINT_PTR timer_ = 0;
};

}  // namespace arbolet::windows::testing
