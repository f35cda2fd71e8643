// The DLL's class objects: a table of the classes it serves, and the one IClassFactory that
// creates an instance of any of them. DllGetClassObject answers from the table.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <new>
#include <span>

namespace arbolet::windows::com {

// Creates a new instance and queries it for `iid`; the instance's own reference is released,
// so a failed query frees it.
using CreateInstanceFunction = HRESULT (*)(REFIID iid, void** object) noexcept;

struct ClassEntry {
    const CLSID* clsid;
    CreateInstanceFunction create;
};

// DllGetClassObject over `table`: CLASS_E_CLASSNOTAVAILABLE for a class it does not hold.
HRESULT GetClassObject(std::span<const ClassEntry> table, REFCLSID clsid, REFIID iid,
                       void** object) noexcept;

// Creates an object of class T (default-constructible, reference count starting at 1) and
// queries it for `iid`, as CreateInstanceFunction requires.
template <typename T>
HRESULT CreateAndQuery(REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    T* instance = new (std::nothrow) T();
    if (instance == nullptr) return E_OUTOFMEMORY;
    const HRESULT hr = instance->QueryInterface(iid, object);
    instance->Release();
    return hr;
}

}  // namespace arbolet::windows::com
