// Registering, finding, connecting and disconnecting an add-in, as the IDE's add-in manager does.
#include "vb6host/addin_session.h"

#include <cwctype>

#include "vb6host/ide_objects.h"
#include "vb6host/vbide_ids.h"

namespace arbolet::vb6host {
namespace {

constexpr wchar_t kAddinsKey[] = L"Software\\Microsoft\\Visual Basic\\6.0\\Addins";

std::wstring ReadText(HKEY key, const wchar_t* subKey, const wchar_t* value) {
    wchar_t text[1024] = {};
    DWORD size = sizeof(text) - sizeof(wchar_t);
    if (RegGetValueW(key, subKey, value, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS) {
        return {};
    }
    return text;
}

DWORD ReadNumber(HKEY key, const wchar_t* subKey, const wchar_t* value) {
    DWORD number = 0;
    DWORD size = sizeof(number);
    RegGetValueW(key, subKey, value, RRF_RT_REG_DWORD, nullptr, &number, &size);
    return number;
}

// The same file, whatever the case and the form of the path.
bool SameFile(const std::wstring& a, const std::wstring& b) {
    wchar_t fullA[MAX_PATH] = {}, fullB[MAX_PATH] = {};
    GetFullPathNameW(a.c_str(), MAX_PATH, fullA, nullptr);
    GetFullPathNameW(b.c_str(), MAX_PATH, fullB, nullptr);
    return _wcsicmp(fullA, fullB) == 0;
}

// An empty array for the `custom` arguments, passed by reference as VB passes it.
struct CustomArgument {
    CustomArgument() : array(SafeArrayCreateVector(VT_VARIANT, 0, 0)) {}
    ~CustomArgument() { SafeArrayDestroy(array); }
    VARIANT ByRef() {
        VARIANT v;
        VariantInit(&v);
        v.vt = VT_ARRAY | VT_VARIANT | VT_BYREF;
        v.pparray = &array;
        return v;
    }
    SAFEARRAY* array;
};

}  // namespace

int Regsvr32(const std::wstring& options, const std::wstring& dll) {
    std::wstring command = L"regsvr32.exe " + options + L" \"" + dll + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process)) {
        return -1;
    }
    WaitForSingleObject(process.hProcess, 60000);
    DWORD code = static_cast<DWORD>(-1);
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
}

std::wstring ServerOf(const CLSID& clsid) {
    wchar_t text[64] = {};
    StringFromGUID2(clsid, text, 64);
    return ReadText(HKEY_CLASSES_ROOT,
                    (std::wstring(L"CLSID\\") + text + L"\\InprocServer32").c_str(), nullptr);
}

bool FindAddIn(const std::wstring& dll, AddInEntry& entry) {
    HKEY addins = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kAddinsKey, 0, KEY_READ, &addins) != ERROR_SUCCESS) {
        return false;
    }
    bool found = false;
    wchar_t name[256];
    for (DWORD i = 0; !found; ++i) {
        DWORD length = 256;
        if (RegEnumKeyExW(addins, i, name, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            break;
        }
        AddInEntry candidate;
        found = FindAddInByProgId(name, candidate) && SameFile(ServerOf(candidate.clsid), dll);
        if (found) entry = candidate;
    }
    RegCloseKey(addins);
    return found;
}

bool FindAddInByProgId(const std::wstring& progId, AddInEntry& entry) {
    const std::wstring key = std::wstring(kAddinsKey) + L"\\" + progId;
    HKEY addIn = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, &addIn) != ERROR_SUCCESS) {
        return false;
    }
    CLSID clsid{};
    const bool found = SUCCEEDED(CLSIDFromProgID(progId.c_str(), &clsid));
    if (found) {
        entry.progId = progId;
        entry.clsid = clsid;
        entry.friendlyName = ReadText(addIn, nullptr, L"FriendlyName");
        entry.description = ReadText(addIn, nullptr, L"Description");
        entry.loadBehavior = ReadNumber(addIn, nullptr, L"LoadBehavior");
    }
    RegCloseKey(addIn);
    return found;
}

bool AddInListed(const std::wstring& progId) {
    HKEY key = nullptr;
    const std::wstring path = std::wstring(kAddinsKey) + L"\\" + progId;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return false;
    }
    RegCloseKey(key);
    return true;
}

HRESULT AddInConnection::Connect(const AddInEntry& entry, int mode) {
    Release();
    HRESULT hr = CoCreateInstance(entry.clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                  reinterpret_cast<void**>(object_.Put()));
    if (FAILED(hr)) return hr;
    // The IDE asks for the connection interface before it connects.
    if (!object_.As<IUnknown>(vbide::ids::IID_IDTExtensibility2)) {
        object_.Reset();
        return E_NOINTERFACE;
    }
    AddInData& addIn = *context_.AddIn();
    addIn.progId = entry.progId;
    addIn.description = entry.description;
    wchar_t guid[64] = {};
    StringFromGUID2(entry.clsid, guid, 64);
    addIn.guid = guid;
    const ComPtr<IDispatch> vbe = VbeObjectFor(context_);
    const ComPtr<IDispatch> addInObject = context_.Wrap<AddInObject>(context_.AddIn());
    CustomArgument custom;
    std::vector<VARIANT> arguments(4);
    for (VARIANT& argument : arguments)
        VariantInit(&argument);
    arguments[0].vt = VT_DISPATCH;
    arguments[0].pdispVal = vbe.Get();
    arguments[1].vt = VT_I4;
    arguments[1].lVal = mode;
    arguments[2].vt = VT_DISPATCH;
    arguments[2].pdispVal = addInObject.Get();
    arguments[3] = custom.ByRef();
    hr = Invoke(vbide::ids::IDTExtensibility2::OnConnection, std::move(arguments));
    addIn.connected = SUCCEEDED(hr);
    return hr;
}

HRESULT AddInConnection::StartupComplete() {
    CustomArgument custom;
    return Invoke(vbide::ids::IDTExtensibility2::OnStartupComplete, {custom.ByRef()});
}

HRESULT AddInConnection::Disconnect() {
    CustomArgument custom;
    VARIANT mode;
    VariantInit(&mode);
    mode.vt = VT_I4;
    mode.lVal = 1;  // ext_dm_UserClosed
    const HRESULT hr =
        Invoke(vbide::ids::IDTExtensibility2::OnDisconnection, {mode, custom.ByRef()});
    context_.AddIn()->connected = false;
    context_.CloseToolWindows();
    Release();
    return hr;
}

HRESULT AddInConnection::CallByName(const wchar_t* name) {
    if (!object_) return E_UNEXPECTED;
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    const HRESULT hr = object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(hr)) return hr;
    return Invoke(id, {});
}

void AddInConnection::Release() {
    object_.Reset();
    context_.AddInObject().Reset();
}

HRESULT AddInConnection::Invoke(DISPID id, std::vector<VARIANT> arguments) {
    if (!object_) return E_UNEXPECTED;
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    EXCEPINFO exception{};
    const HRESULT hr = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params,
                                       nullptr, &exception, nullptr);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    return hr;
}

}  // namespace arbolet::vb6host
