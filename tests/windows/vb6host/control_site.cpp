// The container side of a tool window's control.
#include "vb6host/control_site.h"

#include <olectl.h>

#include "vb6host/tool_window.h"

namespace arbolet::vb6host {
namespace {

constexpr int kHimetricPerInch = 2540;

int Dpi(bool horizontal) {
    HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, horizontal ? LOGPIXELSX : LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi;
}

}  // namespace

void ControlSite::Step(const char* step) {
    if (window_ != nullptr) window_->Step(step);
}

HRESULT ControlSite::QueryInterface(REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IOleClientSite) {
        *object = static_cast<IOleClientSite*>(this);
    } else if (iid == IID_IOleInPlaceSite || iid == IID_IOleWindow) {
        *object = static_cast<IOleInPlaceSite*>(this);
    } else if (iid == IID_IOleInPlaceFrame || iid == IID_IOleInPlaceUIWindow) {
        *object = static_cast<IOleInPlaceFrame*>(this);
    } else if (iid == IID_IOleControlSite) {
        *object = static_cast<IOleControlSite*>(this);
    } else if (iid == IID_IDispatch) {
        *object = static_cast<IDispatch*>(this);
    }
    if (*object == nullptr) {
        LPOLESTR text = nullptr;
        if (SUCCEEDED(StringFromIID(iid, &text))) {
            try {
                refused_.emplace_back(text);
            } catch (...) {
            }
            CoTaskMemFree(text);
        }
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG ControlSite::AddRef() noexcept {
    return static_cast<ULONG>(InterlockedIncrement(&references_));
}

ULONG ControlSite::Release() noexcept {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

// ---- IOleClientSite: the tool window's control has no document to save into ----

HRESULT ControlSite::SaveObject() noexcept {
    return E_NOTIMPL;
}

HRESULT ControlSite::GetMoniker(DWORD, DWORD, IMoniker** moniker) noexcept {
    if (moniker != nullptr) *moniker = nullptr;
    return E_NOTIMPL;
}

HRESULT ControlSite::GetContainer(IOleContainer** container) noexcept {
    if (container != nullptr) *container = nullptr;
    return E_NOINTERFACE;
}

HRESULT ControlSite::ShowObject() noexcept {
    return S_OK;
}

HRESULT ControlSite::OnShowWindow(BOOL) noexcept {
    return S_OK;
}

HRESULT ControlSite::RequestNewObjectLayout() noexcept {
    return E_NOTIMPL;
}

// ---- IOleWindow ----

HRESULT ControlSite::GetWindow(HWND* window) noexcept {
    if (window == nullptr) return E_POINTER;
    *window = window_ != nullptr ? window_->Client() : nullptr;
    return *window != nullptr ? S_OK : E_FAIL;
}

HRESULT ControlSite::ContextSensitiveHelp(BOOL) noexcept {
    return S_OK;
}

// ---- IOleInPlaceSite ----

HRESULT ControlSite::CanInPlaceActivate() noexcept {
    return window_ != nullptr ? S_OK : S_FALSE;
}

HRESULT ControlSite::OnInPlaceActivate() noexcept {
    Step("OnInPlaceActivate");
    if (window_ != nullptr) window_->SetInPlaceActive(true);
    return S_OK;
}

HRESULT ControlSite::OnUIActivate() noexcept {
    Step("OnUIActivate");
    return S_OK;
}

HRESULT ControlSite::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** doc,
                                      LPRECT position, LPRECT clip,
                                      LPOLEINPLACEFRAMEINFO info) noexcept {
    if (frame == nullptr || doc == nullptr || position == nullptr || clip == nullptr) {
        return E_POINTER;
    }
    *frame = static_cast<IOleInPlaceFrame*>(this);
    AddRef();
    *doc = nullptr;
    RECT client{};
    if (window_ != nullptr) GetClientRect(window_->Client(), &client);
    *position = client;
    *clip = client;
    if (info != nullptr) {
        info->fMDIApp = FALSE;
        info->hwndFrame = frame_;
        info->haccel = nullptr;
        info->cAccelEntries = 0;
    }
    return S_OK;
}

HRESULT ControlSite::Scroll(SIZE) noexcept {
    return E_NOTIMPL;
}

HRESULT ControlSite::OnUIDeactivate(BOOL) noexcept {
    Step("OnUIDeactivate");
    return S_OK;
}

HRESULT ControlSite::OnInPlaceDeactivate() noexcept {
    Step("OnInPlaceDeactivate");
    if (window_ != nullptr) window_->SetInPlaceActive(false);
    return S_OK;
}

HRESULT ControlSite::DiscardUndoState() noexcept {
    return E_NOTIMPL;
}

HRESULT ControlSite::DeactivateAndUndo() noexcept {
    return E_NOTIMPL;
}

// The tool window decides the control's place; the control's wish is answered with it.
HRESULT ControlSite::OnPosRectChange(LPCRECT) noexcept {
    if (window_ != nullptr) {
        RECT client;
        GetClientRect(window_->Client(), &client);
        window_->Place([&] {
            RECT frame;
            GetWindowRect(window_->Handle(), &frame);
            MapWindowPoints(HWND_DESKTOP, GetParent(window_->Handle()),
                            reinterpret_cast<POINT*>(&frame), 2);
            return frame;
        }());
    }
    return S_OK;
}

// ---- IOleInPlaceUIWindow and IOleInPlaceFrame: no toolbars or menus are merged ----

HRESULT ControlSite::GetBorder(LPRECT) noexcept {
    return INPLACE_E_NOTOOLSPACE;
}

HRESULT ControlSite::RequestBorderSpace(LPCBORDERWIDTHS) noexcept {
    return INPLACE_E_NOTOOLSPACE;
}

HRESULT ControlSite::SetBorderSpace(LPCBORDERWIDTHS widths) noexcept {
    return widths == nullptr ? S_OK : INPLACE_E_NOTOOLSPACE;
}

HRESULT ControlSite::SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) noexcept {
    if (window_ != nullptr) window_->SetActiveObject(object);
    return S_OK;
}

HRESULT ControlSite::InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS widths) noexcept {
    if (widths != nullptr) {
        widths->width[0] = widths->width[2] = widths->width[4] = 0;
    }
    return S_OK;
}

HRESULT ControlSite::SetMenu(HMENU, HOLEMENU, HWND) noexcept {
    return S_OK;
}

HRESULT ControlSite::RemoveMenus(HMENU) noexcept {
    return S_OK;
}

HRESULT ControlSite::SetStatusText(LPCOLESTR) noexcept {
    return S_OK;
}

HRESULT ControlSite::EnableModeless(BOOL) noexcept {
    return S_OK;
}

HRESULT ControlSite::TranslateAccelerator(LPMSG, WORD) noexcept {
    return S_FALSE;
}

// ---- IOleControlSite ----

HRESULT ControlSite::OnControlInfoChanged() noexcept {
    return S_OK;
}

HRESULT ControlSite::LockInPlaceActive(BOOL) noexcept {
    return S_OK;
}

// No extended control: VB's own extender object (Name, Tag, ...) is not emulated.
HRESULT ControlSite::GetExtendedControl(IDispatch** control) noexcept {
    if (control != nullptr) *control = nullptr;
    return E_NOTIMPL;
}

HRESULT ControlSite::TransformCoords(POINTL* himetric, POINTF* container, DWORD flags) noexcept {
    if (himetric == nullptr || container == nullptr) return E_POINTER;
    const int dpiX = Dpi(true);
    const int dpiY = Dpi(false);
    if (flags & XFORMCOORDS_HIMETRICTOCONTAINER) {
        container->x =
            static_cast<float>(himetric->x) * static_cast<float>(dpiX) / kHimetricPerInch;
        container->y =
            static_cast<float>(himetric->y) * static_cast<float>(dpiY) / kHimetricPerInch;
    } else if (flags & XFORMCOORDS_CONTAINERTOHIMETRIC) {
        himetric->x = static_cast<LONG>(container->x * kHimetricPerInch / static_cast<float>(dpiX));
        himetric->y = static_cast<LONG>(container->y * kHimetricPerInch / static_cast<float>(dpiY));
    } else {
        return E_INVALIDARG;
    }
    return S_OK;
}

HRESULT ControlSite::TranslateAccelerator(LPMSG, DWORD) noexcept {
    return S_FALSE;
}

HRESULT ControlSite::OnFocus(BOOL) noexcept {
    return S_OK;
}

HRESULT ControlSite::ShowPropertyFrame() noexcept {
    return E_NOTIMPL;
}

// ---- ambient properties ----

HRESULT ControlSite::GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID, DISPID* ids) noexcept {
    for (UINT i = 0; ids != nullptr && i < count; ++i)
        ids[i] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
}

HRESULT ControlSite::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result,
                            EXCEPINFO*, UINT*) noexcept {
    if (!(flags & DISPATCH_PROPERTYGET)) return DISP_E_MEMBERNOTFOUND;
    if (result == nullptr) return E_POINTER;
    VariantInit(result);
    switch (id) {
        case DISPID_AMBIENT_USERMODE:  // the IDE runs the add-in, never designs it
            result->vt = VT_BOOL;
            result->boolVal = VARIANT_TRUE;
            return S_OK;
        case DISPID_AMBIENT_UIDEAD:
        case DISPID_AMBIENT_SHOWGRABHANDLES:
        case DISPID_AMBIENT_SHOWHATCHING:
        case DISPID_AMBIENT_MESSAGEREFLECT:
        case DISPID_AMBIENT_SUPPORTSMNEMONICS:
            result->vt = VT_BOOL;
            result->boolVal = VARIANT_FALSE;
            return S_OK;
        case DISPID_AMBIENT_BACKCOLOR:
            result->vt = VT_I4;
            result->lVal = static_cast<LONG>(0x80000000 | COLOR_WINDOW);
            return S_OK;
        case DISPID_AMBIENT_FORECOLOR:
            result->vt = VT_I4;
            result->lVal = static_cast<LONG>(0x80000000 | COLOR_WINDOWTEXT);
            return S_OK;
        case DISPID_AMBIENT_LOCALEID:
            result->vt = VT_I4;
            result->lVal = static_cast<LONG>(GetUserDefaultLCID());
            return S_OK;
        case DISPID_AMBIENT_DISPLAYNAME:
            result->vt = VT_BSTR;
            result->bstrVal = SysAllocString(window_ != nullptr ? window_->Caption().c_str() : L"");
            return S_OK;
    }
    return DISP_E_MEMBERNOTFOUND;
}

}  // namespace arbolet::vb6host
