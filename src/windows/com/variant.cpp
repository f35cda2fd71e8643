// Variant construction and conversion.
#include "windows/com/variant.h"

#include <utility>

#include "windows/com/bstr.h"

namespace arbolet::windows::com {

Variant::Variant(std::int32_t number) noexcept : Variant() {
    value_.vt = VT_I4;
    value_.lVal = number;
}

Variant::Variant(bool flag) noexcept : Variant() {
    value_.vt = VT_BOOL;
    value_.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
}

Variant::Variant(std::string_view utf8) : Variant() {
    value_.vt = VT_BSTR;
    value_.bstrVal = Bstr::Allocate(utf8);
}

Variant::Variant(IDispatch* object) noexcept : Variant() {
    value_.vt = VT_DISPATCH;
    value_.pdispVal = object;
    if (object != nullptr) object->AddRef();
}

Variant::Variant(const Variant& other) noexcept : Variant() {
    VariantCopy(&value_, const_cast<VARIANT*>(&other.value_));
}

Variant::Variant(Variant&& other) noexcept : value_(other.value_) {
    VariantInit(&other.value_);
}

Variant& Variant::operator=(Variant other) noexcept {
    std::swap(value_, other.value_);
    return *this;
}

Variant Variant::Missing() noexcept {
    Variant result;
    result.value_.vt = VT_ERROR;
    result.value_.scode = DISP_E_PARAMNOTFOUND;
    return result;
}

Variant Variant::Copy(const VARIANT& source) noexcept {
    Variant result;
    VariantCopy(&result.value_, const_cast<VARIANT*>(&source));
    return result;
}

Variant Variant::Take(VARIANT& source) noexcept {
    Variant result;
    result.value_ = source;
    VariantInit(&source);
    return result;
}

const VARIANT& Dereference(const VARIANT& value) noexcept {
    const VARIANT* current = &value;
    while (current->vt == (VT_VARIANT | VT_BYREF) && current->pvarVal != nullptr) {
        current = current->pvarVal;
    }
    return *current;
}

std::optional<std::int32_t> Variant::ToInt32() const noexcept {
    VARIANT converted;
    VariantInit(&converted);
    if (FAILED(VariantChangeType(&converted, const_cast<VARIANT*>(&Dereference(value_)), 0, VT_I4)))
        return {};
    return converted.lVal;
}

std::optional<bool> Variant::ToBool() const noexcept {
    VARIANT converted;
    VariantInit(&converted);
    if (FAILED(
            VariantChangeType(&converted, const_cast<VARIANT*>(&Dereference(value_)), 0, VT_BOOL)))
        return {};
    return converted.boolVal != VARIANT_FALSE;
}

std::optional<std::string> Variant::ToUtf8() const {
    Variant converted;
    // VB's CStr gives "True" and "False" for Booleans, not their numbers.
    VARIANT* source = const_cast<VARIANT*>(&Dereference(value_));
    if (FAILED(VariantChangeType(converted.Get(), source, VARIANT_ALPHABOOL, VT_BSTR))) return {};
    return Bstr::Utf8(converted.Get()->bstrVal);
}

ComPtr<IDispatch> Variant::ToDispatch() const noexcept {
    const VARIANT& value = Dereference(value_);
    ComPtr<IDispatch> result;
    switch (value.vt) {
        case VT_DISPATCH:
            return ComPtr<IDispatch>(value.pdispVal);
        case VT_DISPATCH | VT_BYREF:
            return value.ppdispVal != nullptr ? ComPtr<IDispatch>(*value.ppdispVal) : result;
        case VT_UNKNOWN:
            if (value.punkVal != nullptr) {
                value.punkVal->QueryInterface(IID_IDispatch, result.PutVoid());
            }
            return result;
        default:
            return result;
    }
}

}  // namespace arbolet::windows::com
