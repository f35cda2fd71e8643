// The tool window tests' control: the object side of OLE in-place activation, kept small.
#include "vb6host/test_control.h"

#include <ocidl.h>
#include <ole2.h>

#include "windows/com/com_ptr.h"
#include "windows/com/late_bound.h"

namespace arbolet::vb6host::testing {
namespace {

using windows::com::ComPtr;

// {8a4e2f61-3c0d-4b7a-9e15-2d6c7b8f9a30}
constexpr CLSID kClsid = {
    0x8a4e2f61, 0x3c0d, 0x4b7a, {0x9e, 0x15, 0x2d, 0x6c, 0x7b, 0x8f, 0x9a, 0x30}};

std::vector<std::string> gCalls;
int gLive = 0;
HWND gLastWindow = nullptr;

void Log(const char* call) {
    gCalls.emplace_back(call);
}

class TestControl final : public IOleObject,
                          public IOleInPlaceObject,
                          public IPersistStreamInit,
                          public windows::com::LateBound<IDispatch> {
  public:
    TestControl() { ++gLive; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (iid == IID_IUnknown || iid == IID_IOleObject) {
            *object = static_cast<IOleObject*>(this);
        } else if (iid == IID_IOleInPlaceObject || iid == IID_IOleWindow) {
            *object = static_cast<IOleInPlaceObject*>(this);
        } else if (iid == IID_IPersistStreamInit) {
            *object = static_cast<IPersistStreamInit*>(this);
        } else if (iid == IID_IDispatch) {
            *object = static_cast<IDispatch*>(this);
        } else {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++refs_; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG left = --refs_;
        if (left == 0) delete this;
        return left;
    }

    // IOleObject
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) noexcept override {
        Log(site ? "SetClientSite" : "SetClientSite(Nothing)");
        site_ = ComPtr<IOleClientSite>(site);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) noexcept override {
        return site_.CopyTo(site);
    }
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) noexcept override {
        Log("SetHostNames");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Close(DWORD) noexcept override {
        Log("Close");
        return InPlaceDeactivate();
    }
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD, IMoniker*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject*, BOOL, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject**) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG, IOleClientSite* site, LONG, HWND parent,
                                     LPCRECT position) noexcept override {
        Log("DoVerb");
        if (verb != OLEIVERB_INPLACEACTIVATE || site == nullptr) return E_NOTIMPL;
        auto inPlaceSite = ComPtr<IOleClientSite>(site).As<IOleInPlaceSite>(IID_IOleInPlaceSite);
        if (!inPlaceSite || inPlaceSite->CanInPlaceActivate() != S_OK) return E_FAIL;
        inPlaceSite->OnInPlaceActivate();
        ComPtr<IOleInPlaceFrame> frame;
        ComPtr<IOleInPlaceUIWindow> document;
        RECT place{}, clip{};
        OLEINPLACEFRAMEINFO info{};
        info.cb = sizeof(info);
        if (FAILED(
                inPlaceSite->GetWindowContext(frame.Put(), document.Put(), &place, &clip, &info))) {
            return E_FAIL;
        }
        HWND siteWindow = nullptr;
        inPlaceSite->GetWindow(&siteWindow);
        if (siteWindow != parent) Log("GetWindow differs from the DoVerb parent");
        window_ = CreateWindowExW(
            0, L"STATIC", L"Arbolet host test control", WS_CHILD | WS_VISIBLE | SS_CENTER,
            position->left, position->top, position->right - position->left,
            position->bottom - position->top, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
        gLastWindow = window_;
        inPlaceSite_ = inPlaceSite;
        return window_ ? S_OK : E_FAIL;
    }
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Update() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE IsUpToDate() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* clsid) noexcept override {
        *clsid = kClsid;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD, LPOLESTR*) noexcept override {
        return OLE_S_USEREG;
    }
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD, SIZEL*) noexcept override {
        Log("SetExtent");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD, SIZEL*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink*, DWORD*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD, DWORD* status) noexcept override {
        Log("GetMiscStatus");
        *status = OLEMISC_SETCLIENTSITEFIRST | OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_INSIDEOUT |
                  OLEMISC_RECOMPOSEONRESIZE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE*) noexcept override { return E_NOTIMPL; }

    // IOleInPlaceObject
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) noexcept override {
        *window = window_;
        return window_ ? S_OK : E_FAIL;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() noexcept override {
        if (window_ == nullptr) return S_OK;
        Log("InPlaceDeactivate");
        DestroyWindow(window_);
        if (gLastWindow == window_) gLastWindow = nullptr;
        window_ = nullptr;
        if (inPlaceSite_) inPlaceSite_->OnInPlaceDeactivate();
        inPlaceSite_.Reset();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE UIDeactivate() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT position, LPCRECT) noexcept override {
        Log("SetObjectRects");
        if (window_ != nullptr) {
            MoveWindow(window_, position->left, position->top, position->right - position->left,
                       position->bottom - position->top, TRUE);
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ReactivateAndUndo() noexcept override { return E_NOTIMPL; }

    // IPersistStreamInit: nothing to keep.
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) noexcept override {
        *clsid = kClsid;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE IsDirty() noexcept override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE Load(LPSTREAM) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Save(LPSTREAM, BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitNew() noexcept override {
        Log("InitNew");
        return S_OK;
    }

    // IDispatch: what DocObj hands the add-in; no members are needed here.
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID,
                                            DISPID*) noexcept override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) noexcept override {
        return DISP_E_MEMBERNOTFOUND;
    }

  private:
    ~TestControl() { --gLive; }
    ULONG refs_ = 1;
    ComPtr<IOleClientSite> site_;
    ComPtr<IOleInPlaceSite> inPlaceSite_;
    HWND window_ = nullptr;
};

class Factory final : public IClassFactory {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (iid != IID_IUnknown && iid != IID_IClassFactory) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IClassFactory*>(this);
        return S_OK;
    }
    // The factory is static and lives as long as the process.
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 2; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid,
                                             void** object) noexcept override {
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        auto* control = new TestControl();
        const HRESULT hr = control->QueryInterface(iid, object);
        control->Release();
        return hr;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) noexcept override { return S_OK; }
};

Factory gFactory;

std::wstring ClsidText() {
    wchar_t text[64] = {};
    StringFromGUID2(kClsid, text, 64);
    return text;
}

}  // namespace

std::vector<std::string>& ControlCalls() {
    return gCalls;
}

int LiveControls() {
    return gLive;
}

HWND LastControlWindow() {
    return gLastWindow;
}

TestControlRegistration::TestControlRegistration() {
    HKEY key = nullptr;
    const std::wstring path = std::wstring(kTestControlProgId) + L"\\CLSID";
    if (RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                        nullptr) != ERROR_SUCCESS) {
        return;
    }
    const std::wstring clsid = ClsidText();
    RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(clsid.c_str()),
                   static_cast<DWORD>((clsid.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(key);
    if (FAILED(CoRegisterClassObject(kClsid, &gFactory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                     &cookie_))) {
        cookie_ = 0;
    }
}

TestControlRegistration::~TestControlRegistration() {
    if (cookie_ != 0) CoRevokeClassObject(cookie_);
    RegDeleteTreeW(HKEY_CLASSES_ROOT, kTestControlProgId);
}

}  // namespace arbolet::vb6host::testing
