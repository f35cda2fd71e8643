// The dialog robot: one step a tick, against the window of this thread with the caption.
#include "support/dialog_robot.h"

#include "support/test_window.h"

namespace arbolet::windows::testing {
namespace {

DialogRobot* running = nullptr;  // the thread timer's callback has no context of its own

HWND FindOwnWindow(const std::string& caption) {
    const HWND hWnd = FindWindowA(nullptr, caption.c_str());
    if (hWnd == nullptr || GetWindowThreadProcessId(hWnd, nullptr) != GetCurrentThreadId()) {
        return nullptr;
    }
    return IsWindowVisible(hWnd) ? hWnd : nullptr;
}

}  // namespace

DialogRobot::DialogRobot(std::string caption, std::vector<Step> steps, UINT intervalMs)
    : caption_(std::move(caption)), steps_(std::move(steps)) {
    running = this;
    timer_ = SetTimer(nullptr, 0, intervalMs, &DialogRobot::Tick);
}

DialogRobot::~DialogRobot() {
    KillTimer(nullptr, timer_);
    running = nullptr;
}

void CALLBACK DialogRobot::Tick(HWND, UINT, UINT_PTR, DWORD) {
    DialogRobot* robot = running;
    if (robot == nullptr) return;
    const HWND hWnd = FindOwnWindow(robot->caption_);
    if (hWnd == nullptr) return;
    if (robot->next_ < robot->steps_.size()) {
        robot->steps_[robot->next_++](hWnd);
    } else if (++robot->idleTicks_ > 2) {
        robot->closedByRobot_ = true;
        PostMessageW(hWnd, WM_COMMAND, IDCANCEL, 0);
    }
}

DialogRobot::Step DialogRobot::Key(WORD virtualKey) {
    return [virtualKey](HWND) { PressKey(virtualKey); };
}

DialogRobot::Step DialogRobot::Click(int controlId) {
    return [controlId](HWND hWnd) {
        const HWND control = GetDlgItem(hWnd, controlId);
        RECT rc{};
        GetClientRect(control, &rc);
        ClickAt(control, POINT{rc.right / 2, rc.bottom / 2});
    };
}

void DialogRobot::ClickAt(HWND hWnd, POINT client) {
    ClientToScreen(hWnd, &client);
    SetCursorPos(client.x, client.y);
    INPUT inputs[2]{};
    inputs[0].type = INPUT_MOUSE;
    inputs[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    inputs[1] = inputs[0];
    inputs[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
    SendInput(2, inputs, sizeof(INPUT));
}

}  // namespace arbolet::windows::testing
