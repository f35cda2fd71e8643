// ComPtr: owns one reference to a COM interface and releases it when it goes, so that no path
// through the add-in (early returns, errors) leaks an object of the IDE's or its own.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <utility>

namespace arbolet::windows::com {

template <typename T>
class ComPtr {
  public:
    ComPtr() noexcept = default;
    ComPtr(std::nullptr_t) noexcept {}
    // Takes a new reference of its own to `pointer`.
    explicit ComPtr(T* pointer) noexcept : pointer_(pointer) {
        if (pointer_ != nullptr) pointer_->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.pointer_) {}
    ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    ComPtr& operator=(const ComPtr& other) noexcept {
        if (this != &other) ComPtr(other).Swap(*this);
        return *this;
    }
    ComPtr& operator=(ComPtr&& other) noexcept {
        if (this != &other) ComPtr(std::move(other)).Swap(*this);
        return *this;
    }
    ~ComPtr() { Reset(); }

    // Adopts a reference the caller already owns (the result of a COM call).
    static ComPtr Attach(T* pointer) noexcept {
        ComPtr result;
        result.pointer_ = pointer;
        return result;
    }
    // Gives up the reference without releasing it.
    T* Detach() noexcept { return std::exchange(pointer_, nullptr); }

    T* Get() const noexcept { return pointer_; }
    T* operator->() const noexcept { return pointer_; }
    explicit operator bool() const noexcept { return pointer_ != nullptr; }

    // The address for an out parameter; releases the current reference first.
    T** Put() noexcept {
        Reset();
        return &pointer_;
    }
    void** PutVoid() noexcept { return reinterpret_cast<void**>(Put()); }

    void Reset() noexcept {
        if (T* old = std::exchange(pointer_, nullptr)) old->Release();
    }
    void Swap(ComPtr& other) noexcept { std::swap(pointer_, other.pointer_); }

    // Hands a new reference to an out parameter, as QueryInterface-style methods must.
    HRESULT CopyTo(T** out) const noexcept {
        if (out == nullptr) return E_POINTER;
        *out = pointer_;
        if (pointer_ != nullptr) pointer_->AddRef();
        return S_OK;
    }

    // QueryInterface for another interface; empty when the object does not offer it.
    template <typename U>
    ComPtr<U> As(REFIID iid) const noexcept {
        ComPtr<U> result;
        if (pointer_ != nullptr) pointer_->QueryInterface(iid, result.PutVoid());
        return result;
    }

    friend bool operator==(const ComPtr& a, const ComPtr& b) noexcept {
        return a.pointer_ == b.pointer_;
    }

  private:
    T* pointer_ = nullptr;
};

// Whether two interface pointers belong to the same object (COM identity through IUnknown).
inline bool SameObject(IUnknown* a, IUnknown* b) noexcept {
    if (a == nullptr || b == nullptr) return a == b;
    ComPtr<IUnknown> first;
    ComPtr<IUnknown> second;
    if (FAILED(a->QueryInterface(IID_IUnknown, first.PutVoid()))) return false;
    if (FAILED(b->QueryInterface(IID_IUnknown, second.PutVoid()))) return false;
    return first == second;
}

}  // namespace arbolet::windows::com
