// Owning interface pointers and BSTRs for the emulated IDE, so that every reference the host
// takes is given back exactly once, whichever way a function leaves.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <string>
#include <string_view>
#include <utility>

namespace arbolet::vb6host {

template <typename T>
class ComRef {
  public:
    ComRef() noexcept = default;
    // Takes a new reference to `p`.
    explicit ComRef(T* p) noexcept : p_(p) {
        if (p_) p_->AddRef();
    }
    ComRef(const ComRef& other) noexcept : ComRef(other.p_) {}
    ComRef(ComRef&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
    ComRef& operator=(ComRef other) noexcept {
        std::swap(p_, other.p_);
        return *this;
    }
    ~ComRef() { Reset(); }

    // Adopts a reference the caller already owns (an out parameter's).
    static ComRef Adopt(T* p) noexcept {
        ComRef ref;
        ref.p_ = p;
        return ref;
    }

    void Reset() noexcept {
        if (T* old = std::exchange(p_, nullptr)) old->Release();
    }
    T* get() const noexcept { return p_; }
    T* operator->() const noexcept { return p_; }
    explicit operator bool() const noexcept { return p_ != nullptr; }
    // For out parameters: releases what is held and gives the slot.
    T** Put() noexcept {
        Reset();
        return &p_;
    }
    // Hands the reference to an out parameter.
    T* Detach() noexcept { return std::exchange(p_, nullptr); }

    template <typename U>
    ComRef<U> As(REFIID iid) const noexcept {
        ComRef<U> other;
        if (p_) p_->QueryInterface(iid, reinterpret_cast<void**>(other.Put()));
        return other;
    }

  private:
    T* p_ = nullptr;
};

// A BSTR freed when it goes.
class Bstr {
  public:
    Bstr() noexcept = default;
    explicit Bstr(std::wstring_view text)
        : s_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { SysFreeString(s_); }
    BSTR get() const noexcept { return s_; }
    BSTR Detach() noexcept { return std::exchange(s_, nullptr); }

  private:
    BSTR s_ = nullptr;
};

// A VARIANT cleared when it goes.
class Variant {
  public:
    Variant() noexcept { VariantInit(&v_); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(&v_); }
    VARIANT* get() noexcept { return &v_; }
    const VARIANT& operator*() const noexcept { return v_; }

  private:
    VARIANT v_;
};

}  // namespace arbolet::vb6host
