// dVisualBasic's COM surface: QueryInterface, the connection methods guarded against errors,
// and IDispatch::Invoke for callers that bind late.
#include "windows/addin/connection.h"
#include "windows/com/dispatch_names.h"
#include "windows/com/error_info.h"
#include "windows/com/log.h"
#include "windows/com/variant.h"
#include "windows/com/vbide_ids.h"
#include "windows/options/settings.h"

namespace arbolet::windows::addin {
namespace {

constexpr const char* kSource = "Arbolet.dVisualBasic";

struct NamedMember {
    const wchar_t* name;
    DISPID id;
};
constexpr NamedMember kMembers[] = {
    {L"OnConnection", com::ids::IDTExtensibility2::OnConnection},
    {L"OnDisconnection", com::ids::IDTExtensibility2::OnDisconnection},
    {L"OnAddInsUpdate", com::ids::IDTExtensibility2::OnAddInsUpdate},
    {L"OnStartupComplete", com::ids::IDTExtensibility2::OnStartupComplete},
    {L"OnBeginShutdown", com::ids::IDTExtensibility2::OnBeginShutdown},
    {L"Show", kDispidShow},
    {L"Hide", kDispidHide},
    {L"FormDisplayed", kDispidFormDisplayed},
};

// How many arguments each member takes.
UINT ArgumentCount(DISPID id) {
    switch (id) {
        case com::ids::IDTExtensibility2::OnConnection:
            return 4;
        case com::ids::IDTExtensibility2::OnDisconnection:
            return 2;
        case com::ids::IDTExtensibility2::OnAddInsUpdate:
        case com::ids::IDTExtensibility2::OnStartupComplete:
        case com::ids::IDTExtensibility2::OnBeginShutdown:
            return 1;
        default:
            return 0;
    }
}

// The `custom` argument: SAFEARRAY** from VT_ARRAY|VT_VARIANT|VT_BYREF; null otherwise.
SAFEARRAY** CustomArgument(const VARIANT& argument) {
    if ((argument.vt & VT_ARRAY) && (argument.vt & VT_BYREF)) return argument.pparray;
    return nullptr;
}

}  // namespace

HRESULT dVisualBasic::QueryInterface(REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == com::ids::IID_IDTExtensibility2 ||
        iid == com::ids::IID_IDTExtensibility) {
        *object = static_cast<com::IDTExtensibility2*>(this);
        AddRef();
    }
    const HRESULT hr = *object != nullptr ? S_OK : E_NOINTERFACE;
    com::LogQueryInterface("dVisualBasic", iid, hr);
    return hr;
}

ULONG dVisualBasic::Release() noexcept {
    const ULONG count = refs_.Release();
    if (count == 0) delete this;
    return count;
}

HRESULT dVisualBasic::OnConnection(IDispatch* application, LONG connectMode, IDispatch* addInInst,
                                   SAFEARRAY**) noexcept {
    com::Log("OnConnection " + std::to_string(connectMode));
    return com::Guarded(kSource, [&] {
        Connect(com::Dispatch(application), connectMode, com::Dispatch(addInInst));
        return S_OK;
    });
}

HRESULT dVisualBasic::OnDisconnection(LONG removeMode, SAFEARRAY**) noexcept {
    com::Log("OnDisconnection " + std::to_string(removeMode));
    Disconnect();
    return S_OK;
}

HRESULT dVisualBasic::OnStartupComplete(SAFEARRAY**) noexcept {
    com::Log("OnStartupComplete");
    return com::Guarded(kSource, [&] {
        AddToAddInCommandBar("Arbolet");
        if (options::DisplayForm()) Show();
        return S_OK;
    });
}

HRESULT dVisualBasic::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                    DISPID* ids) noexcept {
    return com::IdsOfNames(kMembers, names, count, ids);
}

HRESULT dVisualBasic::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                             VARIANT* result, EXCEPINFO* exception, UINT* argumentError) noexcept {
    if (params == nullptr) return E_INVALIDARG;
    if (params->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
    if (id == kDispidFormDisplayed) {
        if (!(flags & DISPATCH_PROPERTYGET)) return DISP_E_MEMBERNOTFOUND;
        if (params->cArgs != 0) return DISP_E_BADPARAMCOUNT;
        if (result != nullptr) {
            VariantInit(result);
            result->vt = VT_BOOL;
            result->boolVal = formDisplayed_ ? VARIANT_TRUE : VARIANT_FALSE;
        }
        return S_OK;
    }
    if (!(flags & DISPATCH_METHOD)) return DISP_E_MEMBERNOTFOUND;
    if (id == kDispidShow || id == kDispidHide) {
        if (params->cArgs != 0) return DISP_E_BADPARAMCOUNT;
        id == kDispidShow ? Show() : Hide();
        return S_OK;
    }
    const UINT expected = ArgumentCount(id);
    if (expected == 0) return DISP_E_MEMBERNOTFOUND;
    if (params->cArgs != expected) return DISP_E_BADPARAMCOUNT;
    // Arguments arrive last to first.
    const VARIANT* args = params->rgvarg;
    HRESULT hr = S_OK;
    switch (id) {
        case com::ids::IDTExtensibility2::OnConnection: {
            const com::Variant application = com::Variant::Copy(args[3]);
            const com::Variant mode = com::Variant::Copy(args[2]);
            const com::Variant addIn = com::Variant::Copy(args[1]);
            const std::optional<std::int32_t> connectMode = mode.ToInt32();
            if (!connectMode) {
                if (argumentError != nullptr) *argumentError = 2;
                return DISP_E_TYPEMISMATCH;
            }
            hr = OnConnection(application.ToDispatch().Get(), *connectMode,
                              addIn.ToDispatch().Get(), CustomArgument(args[0]));
            break;
        }
        case com::ids::IDTExtensibility2::OnDisconnection: {
            const std::optional<std::int32_t> mode = com::Variant::Copy(args[1]).ToInt32();
            hr = OnDisconnection(mode.value_or(com::ids::kDisconnectUserClosed),
                                 CustomArgument(args[0]));
            break;
        }
        case com::ids::IDTExtensibility2::OnAddInsUpdate:
            hr = OnAddInsUpdate(CustomArgument(args[0]));
            break;
        case com::ids::IDTExtensibility2::OnStartupComplete:
            hr = OnStartupComplete(CustomArgument(args[0]));
            break;
        default:
            hr = OnBeginShutdown(CustomArgument(args[0]));
            break;
    }
    return com::ToDispatchException(hr, exception);
}

}  // namespace arbolet::windows::addin
