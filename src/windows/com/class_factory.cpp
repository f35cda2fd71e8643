// The class factory that DllGetClassObject hands out, one per request.
#include "windows/com/class_factory.h"

#include <new>

#include "windows/com/ref_count.h"

namespace arbolet::windows::com {
namespace {

class ClassFactory final : public IClassFactory, private ModuleObject {
  public:
    explicit ClassFactory(CreateInstanceFunction create) noexcept : create_(create) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        if (iid == IID_IUnknown || iid == IID_IClassFactory) {
            *object = static_cast<IClassFactory*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return refs_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG count = refs_.Release();
        if (count == 0) delete this;
        return count;
    }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid,
                                             void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        return create_(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override {
        if (lock) {
            module::Lock();
        } else {
            module::Unlock();
        }
        return S_OK;
    }

  private:
    RefCount refs_;
    CreateInstanceFunction create_;
};

}  // namespace

HRESULT GetClassObject(std::span<const ClassEntry> table, REFCLSID clsid, REFIID iid,
                       void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    for (const ClassEntry& entry : table) {
        if (*entry.clsid != clsid) continue;
        auto* factory = new (std::nothrow) ClassFactory(entry.create);
        if (factory == nullptr) return E_OUTOFMEMORY;
        const HRESULT hr = factory->QueryInterface(iid, object);
        factory->Release();
        return hr;
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace arbolet::windows::com
