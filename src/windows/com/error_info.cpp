// Translations between HRESULTs, error info and VbError.
#include "windows/com/error_info.h"

#include "windows/com/bstr.h"
#include "windows/com/com_ptr.h"

namespace arbolet::windows::com {
namespace {

// The VB run-time errors that the common dispatch failures show as.
struct KnownFailure {
    HRESULT hr;
    std::int32_t number;
};
constexpr KnownFailure kKnownFailures[] = {
    {DISP_E_UNKNOWNNAME, 438},
    {DISP_E_MEMBERNOTFOUND, 438},
    {E_NOTIMPL, 445},
    {E_NOINTERFACE, 430},
    {DISP_E_BADINDEX, 9},
    {DISP_E_TYPEMISMATCH, 13},
    {DISP_E_OVERFLOW, 6},
    {E_INVALIDARG, 5},
    {DISP_E_PARAMNOTFOUND, 448},
    {DISP_E_BADPARAMCOUNT, 450},
    {E_OUTOFMEMORY, 7},
    {DISP_E_ARRAYISLOCKED, 10},
};

std::string ErrorInfoDescription() {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Put()) != S_OK || !info) return {};
    Bstr description;
    if (FAILED(info->GetDescription(description.Put()))) return {};
    return description.Utf8();
}

std::string SystemDescription(HRESULT hr) {
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, static_cast<DWORD>(hr), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::wstring wide = length > 0 ? std::wstring(text, length) : std::wstring();
    if (text != nullptr) LocalFree(text);
    while (!wide.empty() && (wide.back() == L'\n' || wide.back() == L'\r' || wide.back() == L' ')) {
        wide.pop_back();
    }
    return Bstr(std::wstring_view(wide)).Utf8();
}

}  // namespace

HRESULT HResultFromVbNumber(std::int32_t number) noexcept {
    if (number < 0) return static_cast<HRESULT>(number);
    if (number == 0) return E_FAIL;
    return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, static_cast<unsigned>(number) & 0xFFFF);
}

std::int32_t VbNumberFromHResult(HRESULT hr) noexcept {
    if (HRESULT_FACILITY(hr) == FACILITY_CONTROL) return HRESULT_CODE(hr);
    for (const KnownFailure& known : kKnownFailures) {
        if (known.hr == hr) return known.number;
    }
    return static_cast<std::int32_t>(hr);
}

HRESULT ReportError(HRESULT hr, std::string_view source, std::string_view description) noexcept {
    try {
        ComPtr<ICreateErrorInfo> create;
        if (FAILED(CreateErrorInfo(create.Put()))) return hr;
        Bstr sourceText(source);
        Bstr descriptionText(description);
        create->SetSource(sourceText.Get());
        create->SetDescription(descriptionText.Get());
        create->SetGUID(GUID_NULL);
        ComPtr<IErrorInfo> info = create.As<IErrorInfo>(IID_IErrorInfo);
        if (info) SetErrorInfo(0, info.Get());
    } catch (...) {
        // Out of memory for the texts: the HRESULT alone still tells the caller what failed.
    }
    return hr;
}

HRESULT ReportVbError(const VbError& error) noexcept {
    return ReportError(HResultFromVbNumber(error.Number), error.Source, error.Description);
}

VbError VbErrorFromCom(HRESULT hr, const EXCEPINFO* info, std::string_view source) {
    std::string description;
    std::string errorSource(source);
    if (hr == DISP_E_EXCEPTION && info != nullptr) {
        if (info->pfnDeferredFillIn != nullptr) {
            info->pfnDeferredFillIn(const_cast<EXCEPINFO*>(info));
        }
        hr = info->scode != 0 ? info->scode : HResultFromVbNumber(info->wCode);
        description = Bstr::Utf8(info->bstrDescription);
        if (info->bstrSource != nullptr) errorSource = Bstr::Utf8(info->bstrSource);
    } else {
        description = ErrorInfoDescription();
    }
    if (description.empty()) description = SystemDescription(hr);
    if (description.empty()) description = "Automation error";
    return VbError(VbNumberFromHResult(hr), errorSource, description);
}

HRESULT ToDispatchException(HRESULT hr, EXCEPINFO* info) noexcept {
    if (info == nullptr || SUCCEEDED(hr)) return hr;
    *info = EXCEPINFO{};
    info->scode = hr;
    ComPtr<IErrorInfo> error;
    if (GetErrorInfo(0, error.Put()) == S_OK && error) {
        error->GetSource(&info->bstrSource);
        error->GetDescription(&info->bstrDescription);
    }
    return DISP_E_EXCEPTION;
}

}  // namespace arbolet::windows::com
