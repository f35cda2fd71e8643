// The menu robot's timer and its view of open menu windows.
#include "popupmenu/menu_robot.h"

#include <string>

#include "support/test_window.h"

namespace arbolet::windows::testing {
namespace {

MenuRobot* running = nullptr;

BOOL CALLBACK CollectMenuWindow(HWND hWnd, LPARAM lParam) {
    char className[16] = {};
    GetClassNameA(hWnd, className, sizeof(className));
    if (std::string(className) == "#32768" && IsWindowVisible(hWnd)) {
        reinterpret_cast<std::vector<HWND>*>(lParam)->push_back(hWnd);
    }
    return TRUE;
}

}  // namespace

MenuRobot::MenuRobot(std::vector<Step> steps, UINT intervalMs) : steps_(std::move(steps)) {
    running = this;
    timer_ = SetTimer(nullptr, 0, intervalMs, &MenuRobot::Tick);
}

MenuRobot::~MenuRobot() {
    KillTimer(nullptr, timer_);
    running = nullptr;
}

MenuRobot::Step MenuRobot::Key(WORD virtualKey) {
    return [virtualKey] { PressKey(virtualKey); };
}

std::vector<HWND> MenuRobot::OpenMenuWindows() {
    std::vector<HWND> windows;
    EnumThreadWindows(GetCurrentThreadId(), &CollectMenuWindow, reinterpret_cast<LPARAM>(&windows));
    if (windows.empty()) EnumWindows(&CollectMenuWindow, reinterpret_cast<LPARAM>(&windows));
    // Z order puts the newest first.
    return std::vector<HWND>(windows.rbegin(), windows.rend());
}

void CALLBACK MenuRobot::Tick(HWND, UINT, UINT_PTR, DWORD) {
    MenuRobot* robot = running;
    if (robot == nullptr) return;
    if (robot->next_ < robot->steps_.size()) {
        robot->steps_[robot->next_++]();
    } else if (robot->escapes_ < 20 && !OpenMenuWindows().empty()) {
        ++robot->escapes_;
        PressKey(VK_ESCAPE);
    }
}

}  // namespace arbolet::windows::testing
