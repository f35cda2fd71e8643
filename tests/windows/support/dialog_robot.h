// Plays a script of steps against a modal window while it is open. The call that shows the
// window does not return until it closes, so the steps run from a thread timer, which the
// window's own message loop dispatches. Each step gets the window (found by its caption). If the
// window is still open two ticks after the last step, the robot cancels it (IDCANCEL) and says
// so, so that a test that went wrong fails instead of hanging.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace arbolet::windows::testing {

class DialogRobot {
  public:
    using Step = std::function<void(HWND)>;
    DialogRobot(std::string caption, std::vector<Step> steps, UINT intervalMs = 150);
    ~DialogRobot();
    DialogRobot(const DialogRobot&) = delete;
    DialogRobot& operator=(const DialogRobot&) = delete;

    // Whether every step ran, and whether the robot had to close the window itself.
    bool Finished() const noexcept { return next_ == steps_.size(); }
    bool ClosedByRobot() const noexcept { return closedByRobot_; }

    // A step that presses one key.
    static Step Key(WORD virtualKey);
    // A step that clicks the middle of a control with the left mouse button, as a user would.
    static Step Click(int controlId);
    // A left click at a point of the window's client area.
    static void ClickAt(HWND hWnd, POINT client);

  private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD);
    std::string caption_;
    std::vector<Step> steps_;
    std::size_t next_ = 0;
    int idleTicks_ = 0;
    bool closedByRobot_ = false;
    UINT_PTR timer_ = 0;
};

}  // namespace arbolet::windows::testing
