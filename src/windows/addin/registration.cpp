// The registry keys of the add-in, written and removed as one list.
#include "windows/addin/registration.h"

#include <olectl.h>

#include <string>
#include <vector>

#include "windows/base/ansi_text.h"
#include "windows/com/vbide_ids.h"
#include "windows/registry/reg_key.h"

namespace arbolet::windows::addin {
namespace {

// One value to write; an empty name is the key's default value.
struct Value {
    std::wstring name;
    std::wstring text;
    bool isDword = false;
    DWORD number = 0;
};

struct Key {
    HKEY root;
    std::wstring path;
    std::vector<Value> values;
};

Value Text(std::wstring name, std::wstring text) {
    return {std::move(name), std::move(text)};
}
Value Dword(std::wstring name, DWORD number) {
    return {std::move(name), L"", true, number};
}

std::wstring GuidText(const GUID& guid) {
    wchar_t text[40] = {};
    StringFromGUID2(guid, text, 40);
    return text;
}

std::wstring Wide(const char* text) {
    return Utf8ToWide(text);
}

// The OLEMISC bits of the control: set client site first, activate when visible, inside-out,
// can't link inside, recompose on resize.
constexpr DWORD kMiscStatus = OLEMISC_SETCLIENTSITEFIRST | OLEMISC_ACTIVATEWHENVISIBLE |
                              OLEMISC_INSIDEOUT | OLEMISC_CANTLINKINSIDE |
                              OLEMISC_RECOMPOSEONRESIZE;

// The keys that belong to the add-in alone: the roots of what it writes, deleted whole.
std::vector<Key> AddInKeys(const std::wstring& dllPath, ClassScope scope) {
    const HKEY classes = scope == ClassScope::Machine ? HKEY_CLASSES_ROOT : HKEY_CURRENT_USER;
    const std::wstring prefix = scope == ClassScope::Machine ? L"" : L"Software\\Classes\\";
    const std::wstring connection = GuidText(com::ids::CLSID_Connection);
    const std::wstring control = GuidText(com::ids::CLSID_ToolWindowControl);
    const std::wstring connectionProgId = Wide(com::ids::kConnectionProgId);
    const std::wstring controlProgId = Wide(com::ids::kToolWindowProgId);
    const std::wstring connectionKey = prefix + L"CLSID\\" + connection;
    const std::wstring controlKey = prefix + L"CLSID\\" + control;
    return {
        {classes, connectionKey, {Text(L"", L"Arbolet add-in connection")}},
        {classes,
         connectionKey + L"\\InprocServer32",
         {Text(L"", dllPath), Text(L"ThreadingModel", L"Apartment")}},
        {classes, connectionKey + L"\\ProgID", {Text(L"", connectionProgId)}},
        {classes, prefix + connectionProgId, {Text(L"", L"Arbolet add-in connection")}},
        {classes, prefix + connectionProgId + L"\\CLSID", {Text(L"", connection)}},
        {classes, controlKey, {Text(L"", L"Arbolet tool window")}},
        {classes,
         controlKey + L"\\InprocServer32",
         {Text(L"", dllPath), Text(L"ThreadingModel", L"Apartment")}},
        {classes, controlKey + L"\\ProgID", {Text(L"", controlProgId)}},
        {classes, controlKey + L"\\Control", {}},
        {classes, controlKey + L"\\MiscStatus", {Text(L"", std::to_wstring(kMiscStatus))}},
        {classes, prefix + controlProgId, {Text(L"", L"Arbolet tool window")}},
        {classes, prefix + controlProgId + L"\\CLSID", {Text(L"", control)}},
        // LoadBehavior 3 sets both bits that installers of VB6 add-ins use for "loaded at
        // start-up"; the IDE reads bit 0 for it.
        {HKEY_CURRENT_USER,
         AddInKeyPath(),
         {Text(L"FriendlyName", L"Arbolet"),
          Text(L"Description",
               L"Shows the open projects as a tree of folders, components and each "
               L"component's code as a logic-flow tree with its block errors."),
          Dword(L"LoadBehavior", 3), Dword(L"CommandLineSafe", 0)}},
    };
}

// The keys unregistering deletes whole: those of AddInKeys that no other of them contains.
bool IsRootOfOwnTree(const Key& key, const std::vector<Key>& keys) {
    for (const Key& other : keys) {
        if (other.root == key.root && key.path.size() > other.path.size() &&
            key.path.compare(0, other.path.size() + 1, other.path + L"\\") == 0) {
            return false;
        }
    }
    return true;
}

bool WriteKey(const Key& key) {
    RegKey handle;
    if (RegCreateKeyExW(key.root, key.path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, handle.Put(),
                        nullptr) != ERROR_SUCCESS) {
        return false;
    }
    for (const Value& value : key.values) {
        const LONG status =
            value.isDword
                ? RegSetValueExW(handle.Get(), value.name.c_str(), 0, REG_DWORD,
                                 reinterpret_cast<const BYTE*>(&value.number), sizeof(DWORD))
                : RegSetValueExW(handle.Get(), value.name.c_str(), 0, REG_SZ,
                                 reinterpret_cast<const BYTE*>(value.text.c_str()),
                                 static_cast<DWORD>((value.text.size() + 1) * sizeof(wchar_t)));
        if (status != ERROR_SUCCESS) return false;
    }
    return true;
}

bool DeleteKeyTree(HKEY root, const std::wstring& path) {
    const LONG status = RegDeleteTreeW(root, path.c_str());
    if (status == ERROR_FILE_NOT_FOUND) return true;
    if (status != ERROR_SUCCESS) return false;
    // RegDeleteTree empties the key; the key itself goes with RegDeleteKey.
    const LONG removed = RegDeleteKeyW(root, path.c_str());
    return removed == ERROR_SUCCESS || removed == ERROR_FILE_NOT_FOUND;
}

}  // namespace

std::wstring AddInKeyPath() {
    return L"Software\\Microsoft\\Visual Basic\\6.0\\Addins\\" + Wide(com::ids::kConnectionProgId);
}

HRESULT RegisterAddIn(const std::wstring& dllPath, ClassScope scope) noexcept {
    try {
        for (const Key& key : AddInKeys(dllPath, scope)) {
            if (!WriteKey(key)) {
                UnregisterAddIn(scope);
                return SELFREG_E_CLASS;
            }
        }
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

HRESULT UnregisterAddIn(ClassScope scope) noexcept {
    try {
        const std::vector<Key> keys = AddInKeys(L"", scope);
        bool complete = true;
        for (const Key& key : keys) {
            if (IsRootOfOwnTree(key, keys))
                complete = DeleteKeyTree(key.root, key.path) && complete;
        }
        return complete ? S_OK : SELFREG_E_CLASS;
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace arbolet::windows::addin
