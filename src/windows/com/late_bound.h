// The type-information half of IDispatch for objects that are only ever called late, by name
// (the add-in's connection object and tool-window control, event sinks, the emulated IDE's
// objects). They have no type information, and all of them say so in the same way: no type
// infos, and any index asked for is out of range.
#pragma once

#include <windows.h>
// after windows.h
#include <oaidl.h>

namespace arbolet::windows::com {

// Derive from LateBound<I> instead of I (IDispatch, or an interface derived from it).
template <class Interface = IDispatch>
class LateBound : public Interface {
  public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        if (count == nullptr) return E_POINTER;
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept override {
        if (info == nullptr) return E_POINTER;
        *info = nullptr;
        return DISP_E_BADINDEX;
    }

  protected:
    LateBound() = default;
    ~LateBound() = default;
};

}  // namespace arbolet::windows::com
