// dVisualBasic, the add-in's connection object: the IDE's add-in manager creates it and calls
// its connection events. It creates the tool window, adds the "Arbolet" entry to the "Add-Ins"
// menu and a button to the "Standard" toolbar, shows and hides the tool window when either is
// clicked, and removes what it added when it is disconnected.
//
// It is dual: the IDE calls _IDTExtensibility2 (or the older IDTExtensibility) through the
// vtable or through IDispatch::Invoke; Show and Hide are reachable late-bound by name.
#pragma once

#include <string>

#include "windows/addin/command_bar_sink.h"
#include "windows/addin/tool_window_control.h"
#include "windows/addin/tool_window_document.h"
#include "windows/com/dispatch.h"
#include "windows/com/extensibility.h"
#include "windows/com/late_bound.h"
#include "windows/com/ref_count.h"

namespace arbolet::windows::addin {

// DISPIDs of the members beyond the connection interface's own.
inline constexpr DISPID kDispidShow = 0x60030000;
inline constexpr DISPID kDispidHide = 0x60030001;
inline constexpr DISPID kDispidFormDisplayed = 0x60030002;

class dVisualBasic final : public com::LateBound<com::IDTExtensibility2>,
                           public ConnectionActions,
                           private com::ModuleObject {
  public:
    dVisualBasic() = default;

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return refs_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override;
    // IDispatch (no type information: see LateBound)
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) noexcept override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                     VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentError) noexcept override;
    // _IDTExtensibility2
    HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, LONG connectMode,
                                           IDispatch* addInInst,
                                           SAFEARRAY** custom) noexcept override;
    HRESULT STDMETHODCALLTYPE OnDisconnection(LONG removeMode,
                                              SAFEARRAY** custom) noexcept override;
    HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY**) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) noexcept override;
    HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY**) noexcept override { return S_OK; }

    // Shows or hides the tool window and records the choice in DisplayForm; errors are ignored.
    void Show() noexcept override;
    void Hide() noexcept override;
    bool FormDisplayed() const noexcept { return formDisplayed_; }

  private:
    ~dVisualBasic();
    void Connect(const com::Dispatch& vbe, LONG connectMode, const com::Dispatch& addInInst);
    void CreateToolWindow(const com::Dispatch& addInInst);
    com::Dispatch AddToAddInMenu(const std::string& caption);
    void AddToAddInCommandBar(const std::string& caption) noexcept;
    void AddToolbarButton(const std::string& caption);
    void Disconnect() noexcept;
    HWND OwnerWindow() const noexcept;

    com::RefCount refs_;
    bool formDisplayed_ = false;
    com::Dispatch VBInstance;
    com::ComPtr<ToolWindowControl> mdocAddIn;
    CommandBarClickHandler MenuHandler;
    CommandBarClickHandler MenuHandler2;
    com::Dispatch toolWindow_;
    com::Dispatch menuEntry_;
    com::Dispatch button_;
};

}  // namespace arbolet::windows::addin
