// The tool-window control "Quorlin.docAddIn": an ActiveX control that the IDE's
// Windows.CreateToolWindow (or any OLE control container) creates, sites and activates in place.
// It owns a child window that follows its site's size and hosts the tool-window document.
//
// It answers the interfaces VB-class containers ask for: IOleObject, IOleWindow,
// IOleInPlaceObject, IOleInPlaceActiveObject, IDispatch, IOleControl, IViewObject(2) and
// IPersistStreamInit. Every QueryInterface is logged when ARBOLET_LOG is set.
#pragma once

#include <windows.h>

#include <ocidl.h>
#include <oleidl.h>

#include <memory>

#include "windows/addin/tool_window_document.h"
#include "windows/com/com_ptr.h"
#include "windows/com/late_bound.h"
#include "windows/com/ref_count.h"

namespace arbolet::windows::addin {

class ToolWindowControl final : public IOleObject,
                                public IOleInPlaceObject,
                                public IOleInPlaceActiveObject,
                                public com::LateBound<IDispatch>,
                                public IOleControl,
                                public IViewObject2,
                                public IPersistStreamInit,
                                private com::ModuleObject {
  public:
    ToolWindowControl() = default;

    // The control that was sited last and is still alive, for the connection object: what the
    // IDE hands back as DocObj may be a wrapper of its own.
    static com::ComPtr<ToolWindowControl> LastSited() noexcept;
    // The control behind an interface pointer of this DLL's, or empty.
    static com::ComPtr<ToolWindowControl> FromUnknown(IUnknown* object) noexcept;

    HWND Window() const noexcept { return hwnd_; }
    // The hosted document, created with the control's window; nullptr before activation.
    ToolWindowDocument* Document() const noexcept { return document_.get(); }
    // Unloads the document; the control keeps its window until its container closes it.
    void UnloadDocument() noexcept;

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return refs_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override;

    // IOleObject
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) noexcept override;
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) noexcept override;
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Close(DWORD saveOption) noexcept override;
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD, IMoniker*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker** moniker) noexcept override;
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject*, BOOL, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject** data) noexcept override;
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG, IOleClientSite* activeSite, LONG,
                                     HWND parent, LPCRECT position) noexcept override;
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB** verbs) noexcept override;
    HRESULT STDMETHODCALLTYPE Update() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE IsUpToDate() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* clsid) noexcept override;
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD form, LPOLESTR* userType) noexcept override;
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* size) noexcept override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, SIZEL* size) noexcept override;
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink* sink, DWORD* connection) noexcept override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD connection) noexcept override;
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA** advise) noexcept override;
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) noexcept override;
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE*) noexcept override { return E_NOTIMPL; }

    // IOleWindow
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) noexcept override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) noexcept override { return E_NOTIMPL; }
    // IOleInPlaceObject
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() noexcept override;
    HRESULT STDMETHODCALLTYPE UIDeactivate() noexcept override;
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT position, LPCRECT clip) noexcept override;
    HRESULT STDMETHODCALLTYPE ReactivateAndUndo() noexcept override { return E_NOTIMPL; }
    // IOleInPlaceActiveObject
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG) noexcept override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) noexcept override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) noexcept override { return S_OK; }

    // IDispatch: what the IDE hands back as DocObj. For scripts and tests it offers
    // DumpTree(out, expand) and DumpMenu(key, out[, screenshot]), which write what the
    // standalone explorer's --dump-tree and --dump-menu write.
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) noexcept override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                     VARIANT*, EXCEPINFO* exception,
                                     UINT* argumentError) noexcept override;

    // IOleControl
    HRESULT STDMETHODCALLTYPE GetControlInfo(CONTROLINFO* info) noexcept override;
    HRESULT STDMETHODCALLTYPE OnMnemonic(MSG*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnAmbientPropertyChange(DISPID) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE FreezeEvents(BOOL) noexcept override { return S_OK; }

    // IViewObject2
    HRESULT STDMETHODCALLTYPE Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC draw,
                                   LPCRECTL bounds, LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR),
                                   ULONG_PTR) noexcept override;
    HRESULT STDMETHODCALLTYPE GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC,
                                          LOGPALETTE**) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Freeze(DWORD, LONG, void*, DWORD*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Unfreeze(DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetAdvise(DWORD aspects, DWORD flags,
                                        IAdviseSink* sink) noexcept override;
    HRESULT STDMETHODCALLTYPE GetAdvise(DWORD* aspects, DWORD* flags,
                                        IAdviseSink** sink) noexcept override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*,
                                        LPSIZEL size) noexcept override;

    // IPersistStreamInit
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) noexcept override;
    HRESULT STDMETHODCALLTYPE IsDirty() noexcept override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE Load(LPSTREAM) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Save(LPSTREAM, BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) noexcept override;
    HRESULT STDMETHODCALLTYPE InitNew() noexcept override { return S_OK; }

  private:
    ~ToolWindowControl();
    HRESULT ActivateInPlace(IOleClientSite* site, HWND parent, LPCRECT position,
                            bool uiActivate) noexcept;
    bool CreateControlWindow(HWND parent, const RECT& position) noexcept;
    void DestroyControlWindow() noexcept;
    void FollowClientSize() noexcept;
    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK ParentProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                       UINT_PTR id, DWORD_PTR data);

    com::RefCount refs_;
    com::ComPtr<IOleClientSite> site_;
    com::ComPtr<IOleInPlaceSite> inPlaceSite_;
    com::ComPtr<IOleAdviseHolder> adviseHolder_;
    com::ComPtr<IAdviseSink> viewSink_;
    DWORD viewAspects_ = 0;
    DWORD viewFlags_ = 0;
    SIZEL extent_{5000, 8000};
    HWND hwnd_ = nullptr;
    HWND subclassedParent_ = nullptr;
    bool uiActive_ = false;
    std::unique_ptr<ToolWindowDocument> document_;
};

}  // namespace arbolet::windows::addin
