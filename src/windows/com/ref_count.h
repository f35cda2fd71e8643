// Interlocked reference counts for the add-in's COM objects, and the module's count of live
// objects and server locks that DllCanUnloadNow answers from.
#pragma once

#include <windows.h>

namespace arbolet::windows::com {

// One object's reference count. It starts at 1: the creator holds the first reference.
class RefCount {
  public:
    ULONG AddRef() noexcept { return static_cast<ULONG>(InterlockedIncrement(&count_)); }
    // The count after the release; the owner deletes itself at 0.
    ULONG Release() noexcept { return static_cast<ULONG>(InterlockedDecrement(&count_)); }

  private:
    LONG count_ = 1;
};

// Every live object and every IClassFactory::LockServer(TRUE) keeps the DLL loaded.
namespace module {
void ObjectCreated() noexcept;
void ObjectDestroyed() noexcept;
void Lock() noexcept;
void Unlock() noexcept;
// Live objects plus locks; 0 means the DLL may be unloaded.
LONG ActiveCount() noexcept;
}  // namespace module

// A base for COM object classes: counts the object in the module's total for its lifetime.
class ModuleObject {
  public:
    ModuleObject() noexcept { module::ObjectCreated(); }
    ModuleObject(const ModuleObject&) = delete;
    ModuleObject& operator=(const ModuleObject&) = delete;
    ~ModuleObject() { module::ObjectDestroyed(); }
};

}  // namespace arbolet::windows::com
