// The subclassing service: attach and detach bookkeeping in window properties, the dispatcher
// that stands in for a subclassed window's procedure, and the shared thread keyboard hook.
#include "windows/subclass/subclass.h"

#include <algorithm>
#include <vector>

#include "base/vb_error.h"
#include "windows/base/module_name.h"

namespace arbolet::windows {

namespace subclass_properties {

std::string PreviousProcName(HWND hWnd) {
    return std::to_string(reinterpret_cast<std::uintptr_t>(hWnd));
}
std::string WindowCountName(HWND hWnd) {
    return PreviousProcName(hWnd) + "C";
}
std::string ClientCountName(HWND hWnd, UINT iMsg) {
    return PreviousProcName(hWnd) + "#" + std::to_string(iMsg) + "C";
}
std::string ClientName(HWND hWnd, UINT iMsg, std::int32_t n) {
    return PreviousProcName(hWnd) + "#" + std::to_string(iMsg) + "#" + std::to_string(n);
}

}  // namespace subclass_properties

namespace {

using namespace subclass_properties;

// The message of the client being called. A client may dispatch other messages (sending one to
// another subclassed window) before it asks; each dispatch puts back the number it found.
UINT currentMessage = 0;

class CurrentMessageScope {
  public:
    explicit CurrentMessageScope(UINT iMsg) noexcept : saved_(currentMessage) {
        currentMessage = iMsg;
    }
    ~CurrentMessageScope() { currentMessage = saved_; }
    CurrentMessageScope(const CurrentMessageScope&) = delete;
    CurrentMessageScope& operator=(const CurrentMessageScope&) = delete;

  private:
    UINT saved_;
};

HHOOK keyboardHook = nullptr;
std::vector<ISubclass*> keyboardClients;

[[noreturn]] void Raise(std::int32_t code, const char* description) {
    const std::string source = RunningModuleName() + ".WindowProc";
    if (code < 1001) {
        throw VbError(code, source, "Application-defined or object-defined error");
    }
    throw VbError(subclass_errors::kObjectErrorBase + code, source, description);
}

std::intptr_t ReadNumber(HWND hWnd, const std::string& name) noexcept {
    return reinterpret_cast<std::intptr_t>(GetPropA(hWnd, name.c_str()));
}

void StoreNumber(HWND hWnd, const std::string& name, std::intptr_t value) noexcept {
    SetPropA(hWnd, name.c_str(), reinterpret_cast<HANDLE>(value));
}

ISubclass* ReadClient(HWND hWnd, UINT iMsg, std::int32_t n) noexcept {
    return static_cast<ISubclass*>(GetPropA(hWnd, ClientName(hWnd, iMsg, n).c_str()));
}

WNDPROC ReadPreviousProc(HWND hWnd) noexcept {
    return reinterpret_cast<WNDPROC>(GetPropA(hWnd, PreviousProcName(hWnd).c_str()));
}

LRESULT CallPrevious(WNDPROC previous, HWND hWnd, UINT iMsg, WPARAM wParam,
                     LPARAM lParam) noexcept {
    // A message can still reach the dispatcher after the bookkeeping went, when another
    // subclasser had stacked its procedure on top of ours.
    if (previous == nullptr) return DefWindowProcA(hWnd, iMsg, wParam, lParam);
    return CallWindowProcA(previous, hWnd, iMsg, wParam, lParam);
}

// Client code must not unwind through the system's frames; a failing client counts as having
// answered 0.
LRESULT CallClient(ISubclass* client, HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) noexcept {
    try {
        return client->WindowProc(hWnd, iMsg, wParam, lParam);
    } catch (...) {
        return 0;
    }
}

EMsgResponse AskResponse(ISubclass* client) noexcept {
    try {
        return client->MsgResponse();
    } catch (...) {
        return emrPostProcess;
    }
}

LRESULT CALLBACK Dispatcher(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) {
    const WNDPROC previous = ReadPreviousProc(hWnd);
    const auto count = static_cast<std::int32_t>(ReadNumber(hWnd, ClientCountName(hWnd, iMsg)));
    if (count < 1) return CallPrevious(previous, hWnd, iMsg, wParam, lParam);

    bool previousCalled = false;
    LRESULT result = 0;
    for (std::int32_t n = 1; n <= count; ++n) {
        ISubclass* client = ReadClient(hWnd, iMsg, n);
        if (client == nullptr) {
            result = CallPrevious(previous, hWnd, iMsg, wParam, lParam);
            continue;
        }
        const CurrentMessageScope scope(iMsg);
        // The first client decides on calling the window's procedure first, the last one on
        // calling it afterwards.
        if (n == 1 && AskResponse(client) == emrPreprocess && !previousCalled) {
            CallPrevious(previous, hWnd, iMsg, wParam, lParam);
            previousCalled = true;
        }
        result = CallClient(client, hWnd, iMsg, wParam, lParam);
        if (n == count && AskResponse(client) == emrPostProcess && !previousCalled) {
            previousCalled = true;
            result = CallPrevious(previous, hWnd, iMsg, wParam, lParam);
        }
    }
    return result;
}

void SubclassWindow(HWND hWnd) {
    const LONG_PTR previous =
        SetWindowLongPtrA(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Dispatcher));
    if (previous == 0) Raise(13081, "Can't subclass window");
    StoreNumber(hWnd, PreviousProcName(hWnd), previous);
    StoreNumber(hWnd, WindowCountName(hWnd), 1);
}

void UnsubclassWindow(HWND hWnd) noexcept {
    SetWindowLongPtrA(hWnd, GWLP_WNDPROC, ReadNumber(hWnd, PreviousProcName(hWnd)));
    RemovePropA(hWnd, PreviousProcName(hWnd).c_str());
    RemovePropA(hWnd, WindowCountName(hWnd).c_str());
}

LRESULT CALLBACK KeyboardProc(int code, WPARAM wParam, LPARAM lParam) {
    bool swallow = false;
    if (code == HC_ACTION) {
        const UINT message = (lParam & 0x80000000) != 0 ? WM_KEYUP : WM_KEYDOWN;
        // A copy: a client may detach itself from inside the call.
        const std::vector<ISubclass*> clients = keyboardClients;
        for (ISubclass* client : clients) {
            if (CallClient(client, nullptr, message, wParam, lParam) != 0) swallow = true;
        }
    }
    const LRESULT next = CallNextHookEx(keyboardHook, code, wParam, lParam);
    return swallow ? 1 : next;
}

}  // namespace

void AttachMessage(ISubclass* iwp, HWND hWnd, UINT iMsg) {
    if (!IsWindow(hWnd)) Raise(13083, "Invalid window");
    DWORD processId = 0;
    GetWindowThreadProcessId(hWnd, &processId);
    if (processId != GetCurrentProcessId()) Raise(13084, "Can't modify external window");

    const std::intptr_t windowCount = ReadNumber(hWnd, WindowCountName(hWnd));
    if (windowCount != 0) {
        StoreNumber(hWnd, WindowCountName(hWnd), windowCount + 1);
    } else {
        SubclassWindow(hWnd);
    }

    const std::string countName = ClientCountName(hWnd, iMsg);
    const auto count = static_cast<std::int32_t>(ReadNumber(hWnd, countName));
    for (std::int32_t n = 1; n <= count; ++n) {
        if (ReadClient(hWnd, iMsg, n) == iwp) {
            Raise(13082, "Message already handled by another class");
        }
    }
    StoreNumber(hWnd, countName, count + 1);
    SetPropA(hWnd, ClientName(hWnd, iMsg, count + 1).c_str(), static_cast<HANDLE>(iwp));
}

void DetachMessage(ISubclass* iwp, HWND hWnd, UINT iMsg) noexcept {
    const std::intptr_t windowCount = ReadNumber(hWnd, WindowCountName(hWnd));
    if (windowCount == 1) {
        UnsubclassWindow(hWnd);
    } else {
        StoreNumber(hWnd, WindowCountName(hWnd), windowCount - 1);
    }

    const std::string countName = ClientCountName(hWnd, iMsg);
    const auto count = static_cast<std::int32_t>(ReadNumber(hWnd, countName));
    if (count < 1) return;
    std::int32_t found = 0;
    for (std::int32_t n = 1; n <= count && found == 0; ++n) {
        if (ReadClient(hWnd, iMsg, n) == iwp) found = n;
    }
    if (found != 0) {
        for (std::int32_t n = found; n < count; ++n) {
            SetPropA(hWnd, ClientName(hWnd, iMsg, n).c_str(),
                     static_cast<HANDLE>(ReadClient(hWnd, iMsg, n + 1)));
        }
    }
    // Whether or not the client was found, the last entry goes.
    RemovePropA(hWnd, ClientName(hWnd, iMsg, count).c_str());
    if (count - 1 == 0) {
        RemovePropA(hWnd, countName.c_str());
    } else {
        StoreNumber(hWnd, countName, count - 1);
    }
}

// The procedure is the one kept with the window itself, so that a dispatch nested inside the
// client's call (another window's message) cannot change it.
LRESULT CallOldWindowProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) noexcept {
    return CallPrevious(ReadPreviousProc(hWnd), hWnd, iMsg, wParam, lParam);
}

UINT CurrentMessage() noexcept {
    return currentMessage;
}

void AttachKeyboard(ISubclass* iwp) {
    if (keyboardClients.empty() && keyboardHook == nullptr) {
        keyboardHook = SetWindowsHookExA(WH_KEYBOARD, &KeyboardProc, nullptr, GetCurrentThreadId());
    }
    if (std::find(keyboardClients.begin(), keyboardClients.end(), iwp) != keyboardClients.end()) {
        return;
    }
    keyboardClients.push_back(iwp);
}

void DetachKeyboard(ISubclass* iwp) noexcept {
    std::erase(keyboardClients, iwp);
    if (keyboardClients.empty() && keyboardHook != nullptr) {
        UnhookWindowsHookEx(keyboardHook);
        keyboardHook = nullptr;
    }
}

}  // namespace arbolet::windows
