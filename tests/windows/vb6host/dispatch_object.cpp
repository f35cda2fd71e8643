// IUnknown and IDispatch for the emulated IDE's objects, with VB's argument conventions.
#include "vb6host/dispatch_object.h"

#include <new>

#include "base/vb_error.h"
#include "vb6host/host_context.h"
#include "windows/base/ansi_text.h"
#include "windows/com/dispatch_names.h"
#include "windows/com/variant.h"

namespace arbolet::vb6host {
namespace {

constexpr std::int32_t kTypeMismatch = 13;
constexpr std::int32_t kArgumentNotOptional = 449;

[[noreturn]] void RaiseTypeMismatch() {
    throw VbError(kTypeMismatch, "Invoke", "Type mismatch");
}

bool IsMissing(const VARIANT& value) {
    return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND;
}

const VARIANT& Dereferenced(const VARIANT& value) {
    if (value.vt == (VT_VARIANT | VT_BYREF) && value.pvarVal != nullptr) return *value.pvarVal;
    return value;
}

// A copy converted to `type`; raises Type mismatch when it does not convert.
void ConvertTo(const VARIANT& value, VARTYPE type, windows::com::Variant& out) {
    if (FAILED(VariantChangeType(out.Get(), const_cast<VARIANT*>(&value), 0, type))) {
        RaiseTypeMismatch();
    }
}

HRESULT ExceptionFrom(const VbError& error, EXCEPINFO* exception) {
    if (exception != nullptr) {
        *exception = {};
        exception->bstrSource = SysAllocString(windows::Utf8ToWide(error.Source).c_str());
        exception->bstrDescription = SysAllocString(windows::Utf8ToWide(error.Description).c_str());
        exception->scode = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, error.Number & 0xFFFF);
    }
    return DISP_E_EXCEPTION;
}

}  // namespace

// ---- arguments ----

Arguments::Arguments(const DISPPARAMS& params, bool isPut) noexcept
    : params_(params), positional_(params.cArgs - (isPut && params.cNamedArgs > 0 ? 1 : 0)) {}

bool Arguments::Has(std::size_t index) const noexcept {
    return index < positional_ &&
           !IsMissing(Dereferenced(params_.rgvarg[params_.cArgs - 1 - index]));
}

const VARIANT& Arguments::At(std::size_t index) const {
    if (!Has(index)) {
        throw VbError(kArgumentNotOptional, "Invoke", "Argument not optional");
    }
    return Dereferenced(params_.rgvarg[params_.cArgs - 1 - index]);
}

const VARIANT& Arguments::Value() const {
    if (params_.cArgs == 0) {
        throw VbError(kArgumentNotOptional, "Invoke", "Argument not optional");
    }
    return Dereferenced(params_.rgvarg[0]);
}

VARIANT& Arguments::ByRef(std::size_t index) const {
    if (index >= positional_) {
        throw VbError(kArgumentNotOptional, "Invoke", "Argument not optional");
    }
    VARIANT& slot = params_.rgvarg[params_.cArgs - 1 - index];
    if (slot.vt == (VT_VARIANT | VT_BYREF) && slot.pvarVal != nullptr) return *slot.pvarVal;
    return slot;
}

std::int32_t Arguments::ToLong(const VARIANT& value) {
    windows::com::Variant converted;
    ConvertTo(value, VT_I4, converted);
    return converted.Get()->lVal;
}

std::wstring Arguments::ToString(const VARIANT& value) {
    windows::com::Variant converted;
    ConvertTo(value, VT_BSTR, converted);
    const BSTR text = converted.Get()->bstrVal;
    return text == nullptr ? std::wstring() : std::wstring(text, SysStringLen(text));
}

bool Arguments::ToBool(const VARIANT& value) {
    windows::com::Variant converted;
    ConvertTo(value, VT_BOOL, converted);
    return converted.Get()->boolVal != VARIANT_FALSE;
}

IDispatch* Arguments::ToObject(const VARIANT& value) {
    switch (value.vt) {
        case VT_DISPATCH:
            return value.pdispVal;
        case VT_DISPATCH | VT_BYREF:
            return value.ppdispVal ? *value.ppdispVal : nullptr;
        case VT_EMPTY:
        case VT_NULL:
            return nullptr;
        case VT_UNKNOWN:
        case VT_UNKNOWN | VT_BYREF: {
            IUnknown* unknown = value.vt == VT_UNKNOWN
                                    ? value.punkVal
                                    : (value.ppunkVal ? *value.ppunkVal : nullptr);
            if (unknown == nullptr) return nullptr;
            // The caller's reference keeps the object alive during the call.
            ComPtr<IDispatch> dispatch = ComPtr<IUnknown>(unknown).As<IDispatch>(IID_IDispatch);
            if (!dispatch) RaiseTypeMismatch();
            return dispatch.Get();
        }
        default:
            RaiseTypeMismatch();
    }
}

// ---- results ----

void Call::ReturnLong(std::int32_t value) const {
    if (result == nullptr) return;
    result->vt = VT_I4;
    result->lVal = value;
}

void Call::ReturnBool(bool value) const {
    if (result == nullptr) return;
    result->vt = VT_BOOL;
    result->boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

void Call::ReturnString(std::wstring_view value) const {
    if (result == nullptr) return;
    BSTR text = SysAllocStringLen(value.data(), static_cast<UINT>(value.size()));
    if (text == nullptr) throw std::bad_alloc();
    result->vt = VT_BSTR;
    result->bstrVal = text;
}

void Call::ReturnUtf8(std::string_view value) const {
    ReturnString(windows::Utf8ToWide(value));
}

void Call::ReturnObject(IDispatch* object) const {
    if (result == nullptr) return;
    if (object != nullptr) object->AddRef();
    result->vt = VT_DISPATCH;
    result->pdispVal = object;
}

// ---- the object ----

DispatchObject::DispatchObject(std::shared_ptr<HostContext> context, InterfaceInfo interfaceInfo,
                               std::span<const Member> members)
    : context_(std::move(context)), interface_(interfaceInfo), members_(members) {
    context_->ObjectCreated();
}

DispatchObject::~DispatchObject() {
    if (cacheKey_.first != nullptr) context_->Forget(cacheKey_);
    context_->ObjectDestroyed();
}

std::string DispatchObject::Describe() const {
    return windows::WideToUtf8(interface_.name);
}

HRESULT DispatchObject::QueryInterface(REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == interface_.iid) {
        *object = static_cast<IDispatch*>(this);
    } else if (iid == kIidHostObject) {
        *object = this;
    } else {
        *object = QueryOther(iid);
    }
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG DispatchObject::AddRef() noexcept {
    return static_cast<ULONG>(InterlockedIncrement(&references_));
}

ULONG DispatchObject::Release() noexcept {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

HRESULT DispatchObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                      DISPID* ids) noexcept {
    return windows::com::IdsOfNames(members_, names, count, ids);
}

const Member* DispatchObject::Find(DISPID id) const noexcept {
    for (const Member& member : members_) {
        if (member.id == id) return &member;
    }
    return nullptr;
}

HRESULT DispatchObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                               VARIANT* result, EXCEPINFO* exception,
                               UINT* argumentError) noexcept {
    if (argumentError != nullptr) *argumentError = 0;
    const Member* member = Find(id);
    if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
    DISPPARAMS none = {nullptr, nullptr, 0, 0};
    const DISPPARAMS& p = params != nullptr ? *params : none;
    const bool isPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    if (isPut && member->kind == MemberKind::Method) return DISP_E_MEMBERNOTFOUND;
    if (p.cNamedArgs > (isPut ? 1u : 0u)) return DISP_E_NONAMEDARGS;
    if (result != nullptr) VariantInit(result);
    try {
        const Call call{Arguments(p, isPut), isPut, result};
        std::vector<std::string> shown;
        for (std::size_t i = 0; i < call.args.Count(); ++i)
            shown.push_back(call.args.Has(i) ? VbLiteral(call.args.At(i)) : std::string());
        while (!shown.empty() && shown.back().empty())
            shown.pop_back();
        if (isPut) shown.push_back(VbLiteral(call.args.Value()));
        const char* verb = isPut ? "put" : member->kind == MemberKind::Method ? "call" : "get";
        context_->Transcript().Record(verb, interface_.name, member->name, shown);
        Run(id, call);
        return S_OK;
    } catch (const VbError& error) {
        if (result != nullptr) VariantClear(result);
        return ExceptionFrom(error, exception);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

void DispatchObject::RecordCall(std::wstring_view member,
                                const std::vector<std::string>& arguments) const {
    try {
        context_->Transcript().Record("call", interface_.name, member, arguments);
    } catch (...) {
    }
}

DispatchObject* HostObjectOf(IUnknown* unknown) noexcept {
    if (unknown == nullptr) return nullptr;
    void* object = nullptr;
    if (FAILED(unknown->QueryInterface(kIidHostObject, &object)) || object == nullptr) {
        return nullptr;
    }
    auto* host = static_cast<DispatchObject*>(object);
    host->Release();  // the caller's reference keeps it alive
    return host;
}

IID IidFromString(const wchar_t* text) noexcept {
    IID iid{};
    IIDFromString(text, &iid);
    return iid;
}

}  // namespace arbolet::vb6host
