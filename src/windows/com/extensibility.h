// The add-in connection interface as the IDE calls it through its vtable: _IDTExtensibility2
// (dual, after the seven IUnknown and IDispatch slots). The older IDTExtensibility has the
// same first four methods, so one vtable serves both. Enumerations travel as 32-bit integers.
#pragma once

#include <windows.h>

#include <oaidl.h>

namespace arbolet::windows::com {

struct IDTExtensibility2 : public IDispatch {
    virtual HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, LONG connectMode,
                                                   IDispatch* addInInst,
                                                   SAFEARRAY** custom) noexcept = 0;
    virtual HRESULT STDMETHODCALLTYPE OnDisconnection(LONG removeMode,
                                                      SAFEARRAY** custom) noexcept = 0;
    virtual HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY** custom) noexcept = 0;
    virtual HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) noexcept = 0;
    virtual HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY** custom) noexcept = 0;
};

}  // namespace arbolet::windows::com
