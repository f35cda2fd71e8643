// The site of a control in a tool window: the container side of OLE in-place activation
// (IOleClientSite, IOleInPlaceSite, IOleInPlaceFrame, IOleControlSite) and the ambient
// properties a VB container offers through IDispatch.
#pragma once

#include <ocidl.h>
#include <ole2.h>
#include <windows.h>

#include <string>
#include <vector>

#include "windows/com/late_bound.h"

namespace arbolet::vb6host {

class ToolWindow;

class ControlSite final : public IOleClientSite,
                          public IOleInPlaceSite,
                          public IOleInPlaceFrame,
                          public IOleControlSite,
                          public windows::com::LateBound<IDispatch> {
  public:
    ControlSite(ToolWindow& window, HWND frameWindow) : window_(&window), frame_(frameWindow) {}
    // The tool window is going; calls that arrive later find no window.
    void Detach() noexcept { window_ = nullptr; }
    const std::vector<std::wstring>& Refused() const { return refused_; }

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;
    // IOleClientSite
    HRESULT STDMETHODCALLTYPE SaveObject() noexcept override;
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker** moniker) noexcept override;
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) noexcept override;
    HRESULT STDMETHODCALLTYPE ShowObject() noexcept override;
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL show) noexcept override;
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() noexcept override;
    // IOleWindow (IOleInPlaceSite and IOleInPlaceFrame)
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) noexcept override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL enter) noexcept override;
    // IOleInPlaceSite
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() noexcept override;
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() noexcept override;
    HRESULT STDMETHODCALLTYPE OnUIActivate() noexcept override;
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** doc,
                                               LPRECT position, LPRECT clip,
                                               LPOLEINPLACEFRAMEINFO info) noexcept override;
    HRESULT STDMETHODCALLTYPE Scroll(SIZE extent) noexcept override;
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL undoable) noexcept override;
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() noexcept override;
    HRESULT STDMETHODCALLTYPE DiscardUndoState() noexcept override;
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() noexcept override;
    HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT position) noexcept override;
    // IOleInPlaceUIWindow
    HRESULT STDMETHODCALLTYPE GetBorder(LPRECT border) noexcept override;
    HRESULT STDMETHODCALLTYPE RequestBorderSpace(LPCBORDERWIDTHS widths) noexcept override;
    HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS widths) noexcept override;
    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject* object,
                                              LPCOLESTR name) noexcept override;
    // IOleInPlaceFrame
    HRESULT STDMETHODCALLTYPE InsertMenus(HMENU shared,
                                          LPOLEMENUGROUPWIDTHS widths) noexcept override;
    HRESULT STDMETHODCALLTYPE SetMenu(HMENU shared, HOLEMENU ole, HWND active) noexcept override;
    HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU shared) noexcept override;
    HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR text) noexcept override;
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enable) noexcept override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message, WORD id) noexcept override;
    // IOleControlSite
    HRESULT STDMETHODCALLTYPE OnControlInfoChanged() noexcept override;
    HRESULT STDMETHODCALLTYPE LockInPlaceActive(BOOL lock) noexcept override;
    HRESULT STDMETHODCALLTYPE GetExtendedControl(IDispatch** control) noexcept override;
    HRESULT STDMETHODCALLTYPE TransformCoords(POINTL* himetric, POINTF* container,
                                              DWORD flags) noexcept override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message,
                                                   DWORD modifiers) noexcept override;
    HRESULT STDMETHODCALLTYPE OnFocus(BOOL gotFocus) noexcept override;
    HRESULT STDMETHODCALLTYPE ShowPropertyFrame() noexcept override;
    // IDispatch: the ambient properties
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID,
                                            DISPID*) noexcept override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*,
                                     VARIANT* result, EXCEPINFO*, UINT*) noexcept override;

  private:
    ~ControlSite() = default;
    void Step(const char* step);

    ToolWindow* window_;
    HWND frame_;
    LONG references_ = 1;
    std::vector<std::wstring> refused_;
};

}  // namespace arbolet::vb6host
