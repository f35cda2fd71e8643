// Window subclassing shared by any number of objects: each client asks for single messages of
// single windows and sees them in its WindowProc, before, after or instead of the window's own
// procedure. All bookkeeping lives in properties of the subclassed window itself, so a window
// carries its own client lists and they vanish with it.
//
// Also a keyboard hook for the calling thread that several clients share.
//
// Everything runs on the thread that owns the windows. Failures are raised as VbError with the
// source "<module name>.WindowProc".
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace arbolet::windows {

enum EMsgResponse : std::int32_t {
    emrConsume = 0,      // the client alone handles the message
    emrPostProcess = 1,  // the window's previous procedure runs after the clients
    emrPreprocess = 2,   // the window's previous procedure runs before the clients
};

// What a subclassing client implements. The service holds clients by identity, without owning
// them: a client must detach before it goes away.
class ISubclass {
  public:
    virtual EMsgResponse MsgResponse() = 0;
    virtual void MsgResponse(EMsgResponse response) = 0;
    virtual LRESULT WindowProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) = 0;

  protected:
    ~ISubclass() = default;
};

namespace subclass_errors {
// The numbers raised, with the base of object-defined errors added.
inline constexpr std::int32_t kObjectErrorBase = static_cast<std::int32_t>(0x80040000u);
inline constexpr std::int32_t kCantSubclass = kObjectErrorBase + 13081;
inline constexpr std::int32_t kAlreadyHandled = kObjectErrorBase + 13082;
inline constexpr std::int32_t kInvalidWindow = kObjectErrorBase + 13083;
inline constexpr std::int32_t kExternalWindow = kObjectErrorBase + 13084;
}  // namespace subclass_errors

// Attaches a client to one message of one window of this process.
void AttachMessage(ISubclass* iwp, HWND hWnd, UINT iMsg);
// Undoes one attachment. The window gets its previous procedure back when its last attachment
// goes. A client that was not attached to the message still takes the message's last client
// with it; callers detach exactly what they attached.
void DetachMessage(ISubclass* iwp, HWND hWnd, UINT iMsg) noexcept;

// For a client inside its WindowProc: passes the message to the previous procedure of the window
// being dispatched, and the message number being dispatched.
LRESULT CallOldWindowProc(HWND hWnd, UINT iMsg, WPARAM wParam, LPARAM lParam) noexcept;
UINT CurrentMessage() noexcept;

// The thread's keyboard hook. Clients see each key event as a call of their WindowProc with no
// window, WM_KEYDOWN or WM_KEYUP, the virtual key and the key flags; a non-zero return keeps the
// key from the focus window. The hook is installed for the first client and removed with the
// last.
void AttachKeyboard(ISubclass* iwp);
void DetachKeyboard(ISubclass* iwp) noexcept;

// The names of the window properties that hold the bookkeeping.
namespace subclass_properties {
std::string PreviousProcName(HWND hWnd);
std::string WindowCountName(HWND hWnd);
std::string ClientCountName(HWND hWnd, UINT iMsg);
std::string ClientName(HWND hWnd, UINT iMsg, std::int32_t n);
}  // namespace subclass_properties

}  // namespace arbolet::windows
