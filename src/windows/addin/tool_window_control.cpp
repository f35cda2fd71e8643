// The tool-window control: OLE embedding, in-place activation, drawing and its window.
#include "windows/addin/tool_window_control.h"

#include <commctrl.h>
#include <olectl.h>

#include <algorithm>
#include <vector>

#include "windows/addin/module_instance.h"
#include "windows/base/ansi_text.h"
#include "windows/com/dispatch_names.h"
#include "windows/com/error_info.h"
#include "windows/com/log.h"
#include "windows/com/variant.h"
#include "windows/com/vbide_ids.h"

namespace arbolet::windows::addin {
namespace {

constexpr wchar_t kWindowClass[] = L"ArboletToolWindowControl";
constexpr UINT_PTR kParentSubclassId = 0xA4B0;
// Answered only by ToolWindowControl, with its own pointer.
constexpr IID kIidToolWindowControl = {
    0x6386DC8A, 0x55C6, 0x45B5, {0xAB, 0x6B, 0x2F, 0x53, 0x77, 0x4B, 0x22, 0xE5}};
constexpr DWORD kMiscStatus = OLEMISC_SETCLIENTSITEFIRST | OLEMISC_ACTIVATEWHENVISIBLE |
                              OLEMISC_INSIDEOUT | OLEMISC_CANTLINKINSIDE |
                              OLEMISC_RECOMPOSEONRESIZE;

// Live controls in the order they were sited, the last sited at the back.
std::vector<ToolWindowControl*>& SitedControls() {
    static std::vector<ToolWindowControl*> controls;
    return controls;
}

void Forget(ToolWindowControl* control) noexcept {
    auto& controls = SitedControls();
    controls.erase(std::remove(controls.begin(), controls.end(), control), controls.end());
}

}  // namespace

com::ComPtr<ToolWindowControl> ToolWindowControl::LastSited() noexcept {
    const auto& controls = SitedControls();
    return controls.empty() ? com::ComPtr<ToolWindowControl>()
                            : com::ComPtr<ToolWindowControl>(controls.back());
}

com::ComPtr<ToolWindowControl> ToolWindowControl::FromUnknown(IUnknown* object) noexcept {
    void* control = nullptr;
    if (object == nullptr || FAILED(object->QueryInterface(kIidToolWindowControl, &control))) {
        return {};
    }
    return com::ComPtr<ToolWindowControl>::Attach(static_cast<ToolWindowControl*>(control));
}

ToolWindowControl::~ToolWindowControl() {
    Forget(this);
    UnloadDocument();
    DestroyControlWindow();
}

HRESULT ToolWindowControl::QueryInterface(REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == kIidToolWindowControl) {
        *object = this;
    } else if (iid == IID_IUnknown || iid == IID_IOleObject) {
        *object = static_cast<IOleObject*>(this);
    } else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceObject) {
        *object = static_cast<IOleInPlaceObject*>(this);
    } else if (iid == IID_IOleInPlaceActiveObject) {
        *object = static_cast<IOleInPlaceActiveObject*>(this);
    } else if (iid == IID_IDispatch) {
        *object = static_cast<IDispatch*>(this);
    } else if (iid == IID_IOleControl) {
        *object = static_cast<IOleControl*>(this);
    } else if (iid == IID_IViewObject || iid == IID_IViewObject2) {
        *object = static_cast<IViewObject2*>(this);
    } else if (iid == IID_IPersist || iid == IID_IPersistStreamInit) {
        *object = static_cast<IPersistStreamInit*>(this);
    }
    const HRESULT hr = *object != nullptr ? S_OK : E_NOINTERFACE;
    if (iid != kIidToolWindowControl) com::LogQueryInterface("docAddIn", iid, hr);
    if (SUCCEEDED(hr)) AddRef();
    return hr;
}

ULONG ToolWindowControl::Release() noexcept {
    const ULONG count = refs_.Release();
    if (count == 0) delete this;
    return count;
}

void ToolWindowControl::UnloadDocument() noexcept {
    if (document_) document_->Unload();
    document_.reset();
}

// ---- IOleObject ----

HRESULT ToolWindowControl::SetClientSite(IOleClientSite* site) noexcept {
    site_ = com::ComPtr<IOleClientSite>(site);
    Forget(this);
    if (site == nullptr) {
        inPlaceSite_.Reset();
        return S_OK;
    }
    try {
        SitedControls().push_back(this);
    } catch (...) {
        return E_OUTOFMEMORY;
    }
    return S_OK;
}

HRESULT ToolWindowControl::GetClientSite(IOleClientSite** site) noexcept {
    return site_.CopyTo(site);
}

HRESULT ToolWindowControl::Close(DWORD) noexcept {
    InPlaceDeactivate();
    if (adviseHolder_) adviseHolder_->SendOnClose();
    return S_OK;
}

HRESULT ToolWindowControl::GetMoniker(DWORD, DWORD, IMoniker** moniker) noexcept {
    if (moniker != nullptr) *moniker = nullptr;
    return E_NOTIMPL;
}

HRESULT ToolWindowControl::GetClipboardData(DWORD, IDataObject** data) noexcept {
    if (data != nullptr) *data = nullptr;
    return E_NOTIMPL;
}

HRESULT ToolWindowControl::DoVerb(LONG verb, LPMSG, IOleClientSite* activeSite, LONG, HWND parent,
                                  LPCRECT position) noexcept {
    switch (verb) {
        case OLEIVERB_PRIMARY:
        case OLEIVERB_SHOW:
        case OLEIVERB_INPLACEACTIVATE:
            return ActivateInPlace(activeSite, parent, position, false);
        case OLEIVERB_UIACTIVATE:
            return ActivateInPlace(activeSite, parent, position, true);
        case OLEIVERB_HIDE:
            if (hwnd_ != nullptr) ShowWindow(hwnd_, SW_HIDE);
            return S_OK;
        default:
            return verb < 0 ? E_NOTIMPL : OLEOBJ_S_INVALIDVERB;
    }
}

HRESULT ToolWindowControl::EnumVerbs(IEnumOLEVERB** verbs) noexcept {
    return OleRegEnumVerbs(com::ids::CLSID_ToolWindowControl, verbs);
}

HRESULT ToolWindowControl::GetUserClassID(CLSID* clsid) noexcept {
    return GetClassID(clsid);
}

HRESULT ToolWindowControl::GetUserType(DWORD form, LPOLESTR* userType) noexcept {
    return OleRegGetUserType(com::ids::CLSID_ToolWindowControl, form, userType);
}

HRESULT ToolWindowControl::SetExtent(DWORD aspect, SIZEL* size) noexcept {
    if (size == nullptr) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return E_NOTIMPL;
    extent_ = *size;
    return S_OK;
}

HRESULT ToolWindowControl::GetExtent(DWORD aspect, SIZEL* size) noexcept {
    if (size == nullptr) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return E_NOTIMPL;
    *size = extent_;
    return S_OK;
}

HRESULT ToolWindowControl::Advise(IAdviseSink* sink, DWORD* connection) noexcept {
    if (!adviseHolder_) {
        const HRESULT hr = CreateOleAdviseHolder(adviseHolder_.Put());
        if (FAILED(hr)) return hr;
    }
    return adviseHolder_->Advise(sink, connection);
}

HRESULT ToolWindowControl::Unadvise(DWORD connection) noexcept {
    return adviseHolder_ ? adviseHolder_->Unadvise(connection) : OLE_E_NOCONNECTION;
}

HRESULT ToolWindowControl::EnumAdvise(IEnumSTATDATA** advise) noexcept {
    if (advise == nullptr) return E_POINTER;
    *advise = nullptr;
    return adviseHolder_ ? adviseHolder_->EnumAdvise(advise) : S_OK;
}

HRESULT ToolWindowControl::GetMiscStatus(DWORD, DWORD* status) noexcept {
    if (status == nullptr) return E_POINTER;
    *status = kMiscStatus;
    return S_OK;
}

// ---- in-place activation ----

HRESULT ToolWindowControl::ActivateInPlace(IOleClientSite* activeSite, HWND parent,
                                           LPCRECT position, bool uiActivate) noexcept {
    IOleClientSite* site = activeSite != nullptr ? activeSite : site_.Get();
    if (site == nullptr) return E_UNEXPECTED;
    if (!inPlaceSite_) {
        com::ComPtr<IOleInPlaceSite> inPlaceSite;
        if (FAILED(site->QueryInterface(IID_IOleInPlaceSite, inPlaceSite.PutVoid()))) {
            return OLEOBJ_S_CANNOT_DOVERB_NOW;
        }
        if (inPlaceSite->CanInPlaceActivate() != S_OK) return OLEOBJ_S_CANNOT_DOVERB_NOW;
        inPlaceSite->OnInPlaceActivate();
        inPlaceSite_ = std::move(inPlaceSite);
    }
    if (hwnd_ == nullptr) {
        HWND siteWindow = parent;
        if (siteWindow == nullptr) inPlaceSite_->GetWindow(&siteWindow);
        RECT rect{};
        if (position != nullptr) {
            rect = *position;
        } else {
            com::ComPtr<IOleInPlaceFrame> frame;
            com::ComPtr<IOleInPlaceUIWindow> document;
            RECT clip{};
            OLEINPLACEFRAMEINFO frameInfo{};
            frameInfo.cb = sizeof frameInfo;
            inPlaceSite_->GetWindowContext(frame.Put(), document.Put(), &rect, &clip, &frameInfo);
        }
        if (!CreateControlWindow(siteWindow, rect)) return E_FAIL;
    }
    ShowWindow(hwnd_, SW_SHOWNA);
    if (uiActivate && !uiActive_) {
        uiActive_ = true;
        inPlaceSite_->OnUIActivate();
    }
    return S_OK;
}

bool ToolWindowControl::CreateControlWindow(HWND parent, const RECT& position) noexcept {
    if (!RegisterWindowClassOnce(kWindowClass, WindowProc)) return false;
    hwnd_ = CreateWindowExW(WS_EX_CONTROLPARENT, kWindowClass, L"Arbolet",
                            WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, position.left,
                            position.top, position.right - position.left,
                            position.bottom - position.top, parent, nullptr, ThisModule(), this);
    if (hwnd_ == nullptr) return false;
    // Tool-window frames size the control's window with their own and do not always tell the
    // control: a control that fills its parent follows the parent's size.
    RECT parentClient{};
    const bool fillsParent = parent != nullptr && GetClientRect(parent, &parentClient) &&
                             EqualRect(&parentClient, &position);
    if (fillsParent && SetWindowSubclass(parent, ParentProc, kParentSubclassId,
                                         reinterpret_cast<DWORD_PTR>(this))) {
        subclassedParent_ = parent;
    }
    try {
        if (!document_) document_ = CreateDocument();
    } catch (...) {
        document_.reset();
    }
    if (document_) {
        document_->Create(hwnd_);
        FollowClientSize();
    }
    return true;
}

void ToolWindowControl::DestroyControlWindow() noexcept {
    if (subclassedParent_ != nullptr) {
        RemoveWindowSubclass(subclassedParent_, ParentProc, kParentSubclassId);
        subclassedParent_ = nullptr;
    }
    if (hwnd_ != nullptr) {
        SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
        DestroyWindow(hwnd_);
        hwnd_ = nullptr;
    }
}

void ToolWindowControl::FollowClientSize() noexcept {
    if (hwnd_ == nullptr || !document_) return;
    RECT client{};
    GetClientRect(hwnd_, &client);
    document_->Resize(client.right, client.bottom);
}

HRESULT ToolWindowControl::GetWindow(HWND* window) noexcept {
    if (window == nullptr) return E_POINTER;
    *window = hwnd_;
    return hwnd_ != nullptr ? S_OK : E_FAIL;
}

HRESULT ToolWindowControl::InPlaceDeactivate() noexcept {
    UIDeactivate();
    UnloadDocument();
    DestroyControlWindow();
    if (inPlaceSite_) {
        inPlaceSite_->OnInPlaceDeactivate();
        inPlaceSite_.Reset();
    }
    return S_OK;
}

HRESULT ToolWindowControl::UIDeactivate() noexcept {
    if (uiActive_ && inPlaceSite_) inPlaceSite_->OnUIDeactivate(FALSE);
    uiActive_ = false;
    return S_OK;
}

HRESULT ToolWindowControl::SetObjectRects(LPCRECT position, LPCRECT) noexcept {
    if (position == nullptr) return E_POINTER;
    if (hwnd_ != nullptr) {
        MoveWindow(hwnd_, position->left, position->top, position->right - position->left,
                   position->bottom - position->top, TRUE);
    }
    return S_OK;
}

// ---- IDispatch, IOleControl ----

namespace {

constexpr DISPID kDispidDumpTree = 1;
constexpr DISPID kDispidDumpMenu = 2;

struct ControlMember {
    const wchar_t* name;
    DISPID id;
};
constexpr ControlMember kControlMembers[] = {{L"DumpTree", kDispidDumpTree},
                                             {L"DumpMenu", kDispidDumpMenu}};

// The text arguments of a call, first to last, in UTF-8; false when one is not text.
bool TextArguments(const DISPPARAMS& params, std::vector<std::string>& texts, UINT* bad) {
    for (UINT i = params.cArgs; i-- > 0;) {
        std::optional<std::string> text = com::Variant::Copy(params.rgvarg[i]).ToUtf8();
        if (!text) {
            if (bad != nullptr) *bad = i;
            return false;
        }
        texts.push_back(std::move(*text));
    }
    return true;
}

std::filesystem::path PathOf(const std::string& utf8) {
    return std::filesystem::path(Utf8ToWide(utf8));
}

}  // namespace

HRESULT ToolWindowControl::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                         DISPID* ids) noexcept {
    return com::IdsOfNames(kControlMembers, names, count, ids);
}

HRESULT ToolWindowControl::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT*,
                                  EXCEPINFO* exception, UINT* argumentError) noexcept {
    if (id != kDispidDumpTree && id != kDispidDumpMenu) return DISP_E_MEMBERNOTFOUND;
    if (params == nullptr) return E_INVALIDARG;
    if (!(flags & DISPATCH_METHOD)) return DISP_E_MEMBERNOTFOUND;
    if (params->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
    const UINT least = id == kDispidDumpTree ? 1 : 2;
    if (params->cArgs < least || params->cArgs > least + 1) return DISP_E_BADPARAMCOUNT;
    const HRESULT hr = com::Guarded("Arbolet.docAddIn", [&] {
        std::vector<std::string> texts;
        if (!TextArguments(*params, texts, argumentError)) return DISP_E_TYPEMISMATCH;
        texts.resize(least + 1);
        std::string error;
        const bool done =
            document_ != nullptr &&
            (id == kDispidDumpTree
                 ? document_->DumpTree(texts[1], PathOf(texts[0]), error)
                 : document_->DumpMenu(texts[0], PathOf(texts[1]), PathOf(texts[2]), error));
        if (done) return S_OK;
        return com::ReportError(E_FAIL, "Arbolet.docAddIn",
                                error.empty() ? "The tool window has no document" : error);
    });
    return com::ToDispatchException(hr, exception);
}

HRESULT ToolWindowControl::GetControlInfo(CONTROLINFO* info) noexcept {
    if (info == nullptr) return E_POINTER;
    info->hAccel = nullptr;
    info->cAccel = 0;
    info->dwFlags = 0;
    return S_OK;
}

// ---- IViewObject2 ----

HRESULT ToolWindowControl::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC draw,
                                LPCRECTL bounds, LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR),
                                ULONG_PTR) noexcept {
    if (draw == nullptr || bounds == nullptr) return E_INVALIDARG;
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    const RECT rect{bounds->left, bounds->top, bounds->right, bounds->bottom};
    if (hwnd_ != nullptr) {
        // The live window draws itself and its document into the container's device context.
        const int saved = SaveDC(draw);
        SetViewportOrgEx(draw, rect.left, rect.top, nullptr);
        IntersectClipRect(draw, 0, 0, rect.right - rect.left, rect.bottom - rect.top);
        SendMessageW(hwnd_, WM_PRINT, reinterpret_cast<WPARAM>(draw),
                     PRF_CLIENT | PRF_CHILDREN | PRF_ERASEBKGND);
        RestoreDC(draw, saved);
    } else {
        FillRect(draw, &rect, GetSysColorBrush(COLOR_WINDOW));
        RECT text = rect;
        DrawTextW(draw, L"Arbolet", -1, &text, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    }
    return S_OK;
}

HRESULT ToolWindowControl::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) noexcept {
    viewSink_ = com::ComPtr<IAdviseSink>(sink);
    viewAspects_ = aspects;
    viewFlags_ = flags;
    return S_OK;
}

HRESULT ToolWindowControl::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) noexcept {
    if (aspects != nullptr) *aspects = viewAspects_;
    if (flags != nullptr) *flags = viewFlags_;
    return sink != nullptr ? viewSink_.CopyTo(sink) : S_OK;
}

HRESULT ToolWindowControl::GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL size) noexcept {
    return GetExtent(aspect, size);
}

// ---- IPersistStreamInit ----

HRESULT ToolWindowControl::GetClassID(CLSID* clsid) noexcept {
    if (clsid == nullptr) return E_POINTER;
    *clsid = com::ids::CLSID_ToolWindowControl;
    return S_OK;
}

HRESULT ToolWindowControl::GetSizeMax(ULARGE_INTEGER* size) noexcept {
    if (size == nullptr) return E_POINTER;
    size->QuadPart = 0;
    return S_OK;
}

// ---- windows ----

LRESULT CALLBACK ToolWindowControl::WindowProc(HWND hwnd, UINT message, WPARAM wParam,
                                               LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* create = reinterpret_cast<CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<ToolWindowControl*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    switch (message) {
        case WM_SIZE:
            if (self != nullptr) self->FollowClientSize();
            return 0;
        case WM_ERASEBKGND: {
            RECT client{};
            GetClientRect(hwnd, &client);
            FillRect(reinterpret_cast<HDC>(wParam), &client, GetSysColorBrush(COLOR_WINDOW));
            return 1;
        }
        default:
            return DefWindowProcW(hwnd, message, wParam, lParam);
    }
}

LRESULT CALLBACK ToolWindowControl::ParentProc(HWND hwnd, UINT message, WPARAM wParam,
                                               LPARAM lParam, UINT_PTR, DWORD_PTR data) {
    if (message == WM_SIZE) {
        auto* self = reinterpret_cast<ToolWindowControl*>(data);
        // A docked tool window's frame may set bit 15 of each size; it is not part of it.
        const int width = LOWORD(lParam) & 0x7FFF;
        const int height = HIWORD(lParam) & 0x7FFF;
        if (self->hwnd_ != nullptr) MoveWindow(self->hwnd_, 0, 0, width, height, TRUE);
    }
    return DefSubclassProc(hwnd, message, wParam, lParam);
}

}  // namespace arbolet::windows::addin
