// Late-bound calls: name resolution with its cache, argument order, and error translation.
#include "windows/com/dispatch.h"

#include <string>

#include "windows/com/bstr.h"
#include "windows/com/error_info.h"

namespace arbolet::windows::com {
namespace {

// Frees what a failed Invoke left in its EXCEPINFO.
struct ExceptionInfo {
    EXCEPINFO info{};
    ExceptionInfo() = default;
    ExceptionInfo(const ExceptionInfo&) = delete;
    ExceptionInfo& operator=(const ExceptionInfo&) = delete;
    ~ExceptionInfo() {
        SysFreeString(info.bstrSource);
        SysFreeString(info.bstrDescription);
        SysFreeString(info.bstrHelpFile);
    }
};

std::string MemberText(const DispMember& member) {
    return std::string(member.interfaceName) + "." + Bstr(std::wstring_view(member.name)).Utf8();
}

}  // namespace

Dispatch::Dispatch(ComPtr<IDispatch> object)
    : object_(std::move(object)), dispids_(std::make_shared<std::map<std::wstring, DISPID>>()) {}

DISPID Dispatch::Resolve(const DispMember& member) const noexcept {
    try {
        const std::wstring name(member.name);
        if (auto found = dispids_->find(name); found != dispids_->end()) return found->second;
        DISPID id = DISPID_UNKNOWN;
        LPOLESTR names[] = {const_cast<LPOLESTR>(member.name)};
        if (FAILED(object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id)) ||
            id == DISPID_UNKNOWN) {
            id = member.id;
        }
        dispids_->emplace(name, id);
        return id;
    } catch (...) {
        return member.id;
    }
}

HRESULT Dispatch::Invoke(const DispMember& member, WORD flags, std::span<const Variant> args,
                         VARIANT* result, EXCEPINFO* exception) const noexcept {
    if (!object_) return E_POINTER;
    const DISPID id = Resolve(member);
    try {
        // DISPPARAMS holds the arguments last to first; the Variants keep owning them.
        std::vector<VARIANTARG> reversed;
        reversed.reserve(args.size());
        for (auto it = args.rbegin(); it != args.rend(); ++it)
            reversed.push_back(*it->Get());
        DISPID named = DISPID_PROPERTYPUT;
        DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
            params.rgdispidNamedArgs = &named;
            params.cNamedArgs = 1;
        }
        UINT badArgument = 0;
        return object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result, exception,
                               &badArgument);
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

Variant Dispatch::InvokeOrRaise(const DispMember& member, WORD flags,
                                std::span<const Variant> args) const {
    if (!object_) {
        throw VbError(91, MemberText(member), "Object variable or With block variable not set");
    }
    Variant result;
    ExceptionInfo exception;
    const HRESULT hr = Invoke(member, flags, args, result.Put(), &exception.info);
    if (FAILED(hr)) throw VbErrorFromCom(hr, &exception.info, MemberText(member));
    return result;
}

Variant Dispatch::Get(const DispMember& member, std::initializer_list<Variant> args) const {
    return InvokeOrRaise(member, DISPATCH_PROPERTYGET | DISPATCH_METHOD,
                         std::span<const Variant>(args.begin(), args.size()));
}

Dispatch Dispatch::GetObject(const DispMember& member, std::initializer_list<Variant> args) const {
    const Variant value = Get(member, args);
    if (value.Type() != VT_DISPATCH && value.Type() != VT_UNKNOWN && value.Type() != VT_EMPTY &&
        value.Type() != VT_NULL) {
        throw VbError(13, MemberText(member), "Type mismatch");
    }
    ComPtr<IDispatch> object = value.ToDispatch();
    return object ? Dispatch(std::move(object)) : Dispatch();
}

std::string Dispatch::GetText(const DispMember& member, std::initializer_list<Variant> args) const {
    std::optional<std::string> text = Get(member, args).ToUtf8();
    if (!text) throw VbError(13, MemberText(member), "Type mismatch");
    return *text;
}

std::int32_t Dispatch::GetInt(const DispMember& member, std::initializer_list<Variant> args) const {
    std::optional<std::int32_t> number = Get(member, args).ToInt32();
    if (!number) throw VbError(13, MemberText(member), "Type mismatch");
    return *number;
}

bool Dispatch::GetBool(const DispMember& member, std::initializer_list<Variant> args) const {
    std::optional<bool> flag = Get(member, args).ToBool();
    if (!flag) throw VbError(13, MemberText(member), "Type mismatch");
    return *flag;
}

void Dispatch::Put(const DispMember& member, const Variant& value) const {
    InvokeOrRaise(member, DISPATCH_PROPERTYPUT, std::span<const Variant>(&value, 1));
}

void Dispatch::PutRef(const DispMember& member, const Variant& value) const {
    InvokeOrRaise(member, DISPATCH_PROPERTYPUTREF, std::span<const Variant>(&value, 1));
}

Variant Dispatch::Call(const DispMember& member, std::initializer_list<Variant> args) const {
    return InvokeOrRaise(member, DISPATCH_METHOD,
                         std::span<const Variant>(args.begin(), args.size()));
}

}  // namespace arbolet::windows::com
