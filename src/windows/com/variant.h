// Variant: owns a VARIANT (VariantInit ... VariantClear), with the conversions the add-in needs
// for the arguments and results of late-bound calls.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "windows/com/com_ptr.h"

namespace arbolet::windows::com {

class Variant {
  public:
    Variant() noexcept { VariantInit(&value_); }
    Variant(std::int32_t number) noexcept;
    Variant(bool flag) noexcept;
    Variant(std::string_view utf8);
    Variant(const char* utf8) : Variant(std::string_view(utf8)) {}
    // An object reference (VT_DISPATCH, Nothing when null); takes a reference of its own.
    Variant(IDispatch* object) noexcept;
    Variant(const Variant& other) noexcept;
    Variant(Variant&& other) noexcept;
    Variant& operator=(Variant other) noexcept;
    ~Variant() { VariantClear(&value_); }

    // An omitted optional argument, as VB passes one.
    static Variant Missing() noexcept;
    // A copy of a VARIANT the caller keeps.
    static Variant Copy(const VARIANT& source) noexcept;
    // Takes over the content of a VARIANT the caller owns, leaving it VT_EMPTY.
    static Variant Take(VARIANT& source) noexcept;

    VARIANT* Get() noexcept { return &value_; }
    const VARIANT* Get() const noexcept { return &value_; }
    // The address for an out parameter; clears the current content first.
    VARIANT* Put() noexcept {
        VariantClear(&value_);
        return &value_;
    }
    VARTYPE Type() const noexcept { return value_.vt; }
    bool IsEmpty() const noexcept { return value_.vt == VT_EMPTY; }

    // Conversions by VB's rules (VariantChangeType); nullopt when the value does not convert.
    std::optional<std::int32_t> ToInt32() const noexcept;
    std::optional<bool> ToBool() const noexcept;
    std::optional<std::string> ToUtf8() const;
    // The object inside (VT_DISPATCH or VT_UNKNOWN answering IDispatch); empty for Nothing or
    // any other type.
    ComPtr<IDispatch> ToDispatch() const noexcept;

  private:
    VARIANT value_;
};

// Reads a VARIANT argument as VB would, looking through VT_BYREF and VT_VARIANT|VT_BYREF.
const VARIANT& Dereference(const VARIANT& value) noexcept;

}  // namespace arbolet::windows::com
