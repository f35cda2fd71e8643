// Owning wrappers for the GDI and USER handles the Windows shell creates: each is deleted with
// the function that matches it when the wrapper goes.
#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace arbolet::windows {

struct GdiObjectDeleter {
    void operator()(HGDIOBJ handle) const noexcept { DeleteObject(handle); }
};
struct MenuDeleter {
    void operator()(HMENU handle) const noexcept { DestroyMenu(handle); }
};
struct DcDeleter {
    void operator()(HDC handle) const noexcept { DeleteDC(handle); }
};

using OwnedFont = std::unique_ptr<std::remove_pointer_t<HFONT>, GdiObjectDeleter>;
using OwnedBitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, GdiObjectDeleter>;
using OwnedBrush = std::unique_ptr<std::remove_pointer_t<HBRUSH>, GdiObjectDeleter>;
using OwnedPen = std::unique_ptr<std::remove_pointer_t<HPEN>, GdiObjectDeleter>;
using OwnedMenu = std::unique_ptr<std::remove_pointer_t<HMENU>, MenuDeleter>;
using OwnedDc = std::unique_ptr<std::remove_pointer_t<HDC>, DcDeleter>;

// A device context borrowed from a window with GetDC, given back with ReleaseDC.
class WindowDc {
  public:
    explicit WindowDc(HWND hWnd) noexcept : hWnd_(hWnd), hdc_(GetDC(hWnd)) {}
    ~WindowDc() {
        if (hdc_ != nullptr) ReleaseDC(hWnd_, hdc_);
    }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    HDC get() const noexcept { return hdc_; }

  private:
    HWND hWnd_;
    HDC hdc_;
};

// Selects an object into a device context for one scope and puts the old one back.
class SelectedObject {
  public:
    SelectedObject(HDC hdc, HGDIOBJ object) noexcept
        : hdc_(hdc), old_(object != nullptr ? SelectObject(hdc, object) : nullptr) {}
    ~SelectedObject() {
        if (old_ != nullptr) SelectObject(hdc_, old_);
    }
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;

  private:
    HDC hdc_;
    HGDIOBJ old_;
};

}  // namespace arbolet::windows
