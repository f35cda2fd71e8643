// What an installed Arbolet package should leave behind, and how to look (see
// installed_product.h).
#include "installed_product.h"

#include <msi.h>
#include <shlobj.h>

#include <fstream>
#include <iterator>

#include "arbolet/com_identity.h"

namespace arbolet::installer_testing {
namespace fs = std::filesystem;

namespace {

fs::path KnownFolder(REFKNOWNFOLDERID id) {
    PWSTR path = nullptr;
    fs::path result;
    if (SUCCEEDED(SHGetKnownFolderPath(id, 0, nullptr, &path))) result = path;
    CoTaskMemFree(path);
    return result;
}

// Where COM classes and shell verbs go: the machine's classes, or the user's.
HKEY ClassesRoot(Scope scope) {
    return scope == Scope::PerMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

const std::wstring kClasses = L"Software\\Classes\\";
const std::wstring kAddIns = L"Software\\Microsoft\\Visual Basic\\6.0\\Addins\\";

std::wstring Clsid(const char* text) {
    return kClasses + L"CLSID\\" + Widen(text);
}

std::wstring RootName(HKEY root) {
    return root == HKEY_LOCAL_MACHINE ? L"HKLM\\" : L"HKCU\\";
}

void AddClass(std::vector<RegistryValue>& values, HKEY root, const char* clsid, const char* progId,
              const std::wstring& name, const std::wstring& dll) {
    const std::wstring key = Clsid(clsid);
    values.push_back({root, key, L"", name});
    values.push_back({root, key + L"\\InprocServer32", L"", dll});
    values.push_back({root, key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"});
    values.push_back({root, key + L"\\ProgID", L"", Widen(progId)});
    values.push_back({root, kClasses + Widen(progId), L"", name});
    values.push_back({root, kClasses + Widen(progId) + L"\\CLSID", L"", Widen(clsid)});
}

}  // namespace

std::wstring Widen(const char* text) {
    std::wstring wide;
    for (; *text != '\0'; ++text)
        wide += static_cast<wchar_t>(static_cast<unsigned char>(*text));
    return wide;
}

DWORD RunMsiexec(const std::wstring& arguments) {
    return RunProgram(L"msiexec.exe " + arguments);
}

std::vector<char> FileBytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::vector<char>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool SameBytes(const fs::path& a, const fs::path& b) {
    const std::vector<char> bytes = FileBytes(a);
    return !bytes.empty() && bytes == FileBytes(b);
}

DWORD RunProgram(std::wstring commandLine) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process))
        return GetLastError();
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return exitCode;
}

std::wstring WindowsPath(const char* path) {
    const std::wstring host = Widen(path);
    std::wstring full(MAX_PATH * 4, L'\0');
    const DWORD length =
        GetFullPathNameW(host.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    full.resize(length);
    return full;
}

fs::path InstallFolder(Scope scope) {
    if (scope == Scope::PerUser) return KnownFolder(FOLDERID_LocalAppData) / "Programs" / "Arbolet";
    // The package's bitness is this program's, so this is the folder the package chose.
    return KnownFolder(FOLDERID_ProgramFiles) / "Arbolet";
}

std::vector<fs::path> StartMenuEntries() {
    return {KnownFolder(FOLDERID_CommonPrograms) / "Arbolet Explorer.lnk",
            KnownFolder(FOLDERID_Programs) / "Arbolet Explorer.lnk"};
}

std::vector<fs::path> ExpectedFiles(Scope scope, const PackageContents& contents) {
    const fs::path folder = InstallFolder(scope);
    std::vector<fs::path> files{folder / "arbolet.exe"};
    if (contents.addIn) files.push_back(folder / "Arbolet.dll");
    if (contents.explorer) files.push_back(folder / "arbolet-explorer.exe");
    if (contents.help) files.push_back(folder / "Arbolet.chm");
    return files;
}

std::vector<RegistryValue> ExpectedValues(Scope scope, const PackageContents& contents) {
    const HKEY classes = ClassesRoot(scope);
    const fs::path folder = InstallFolder(scope);
    std::vector<RegistryValue> values;
    if (contents.addIn) {
        const std::wstring dll = (folder / "Arbolet.dll").wstring();
        AddClass(values, classes, ARBOLET_CONNECT_CLSID_TEXT, ARBOLET_CONNECT_PROGID,
                 L"Arbolet add-in connection", dll);
        AddClass(values, classes, ARBOLET_DOCUMENT_CLSID_TEXT, ARBOLET_DOCUMENT_PROGID,
                 L"Arbolet tool window", dll);
        const std::wstring control = Clsid(ARBOLET_DOCUMENT_CLSID_TEXT);
        values.push_back({classes, control + L"\\Control", L"", L""});
        values.push_back({classes, control + L"\\MiscStatus", L"", L"131473"});
        const std::wstring addIn = kAddIns + Widen(ARBOLET_CONNECT_PROGID);
        values.push_back({HKEY_CURRENT_USER, addIn, L"FriendlyName", L"Arbolet"});
        values.push_back(
            {HKEY_CURRENT_USER, addIn, L"Description", Widen(ARBOLET_ADDIN_DESCRIPTION)});
        values.push_back({HKEY_CURRENT_USER, addIn, L"LoadBehavior", DWORD{3}});
        values.push_back({HKEY_CURRENT_USER, addIn, L"CommandLineSafe", DWORD{0}});
    }
    if (contents.explorer) {
        const std::wstring command =
            L"\"" + (folder / "arbolet-explorer.exe").wstring() + L"\" \"%1\"";
        for (const wchar_t* extension : {L".vbp", L".vbg"}) {
            const std::wstring verb =
                kClasses + L"SystemFileAssociations\\" + extension + L"\\shell\\ArboletExplorer";
            values.push_back({classes, verb, L"", L"Open with Arbolet Explorer"});
            values.push_back({classes, verb + L"\\command", L"", command});
        }
    }
    return values;
}

std::vector<std::pair<HKEY, std::wstring>> CreatedKeys(Scope scope) {
    const HKEY classes = ClassesRoot(scope);
    return {{classes, Clsid(ARBOLET_CONNECT_CLSID_TEXT)},
            {classes, Clsid(ARBOLET_DOCUMENT_CLSID_TEXT)},
            {classes, kClasses + Widen(ARBOLET_CONNECT_PROGID)},
            {classes, kClasses + Widen(ARBOLET_DOCUMENT_PROGID)},
            {classes, kClasses + L"SystemFileAssociations\\.vbp\\shell\\ArboletExplorer"},
            {classes, kClasses + L"SystemFileAssociations\\.vbg\\shell\\ArboletExplorer"},
            {HKEY_CURRENT_USER, kAddIns + Widen(ARBOLET_CONNECT_PROGID)},
            {HKEY_CURRENT_USER, L"Software\\Arbolet"}};
}

std::wstring ExpectedText(const RegistryValue& expected) {
    std::wstring text = RootName(expected.root) + expected.key + L"\\" + expected.name + L" = ";
    if (const auto* number = std::get_if<DWORD>(&expected.value))
        return text + std::to_wstring(*number);
    return text + std::get<std::wstring>(expected.value);
}

std::wstring StoredText(const RegistryValue& expected) {
    const std::wstring place =
        RootName(expected.root) + expected.key + L"\\" + expected.name + L" = ";
    const wchar_t* name = expected.name.empty() ? nullptr : expected.name.c_str();
    DWORD type = 0;
    DWORD size = 0;
    if (RegGetValueW(expected.root, expected.key.c_str(), name, RRF_RT_ANY, &type, nullptr,
                     &size) != ERROR_SUCCESS)
        return place + L"missing";
    if (type == REG_DWORD) {
        DWORD number = 0;
        size = sizeof number;
        RegGetValueW(expected.root, expected.key.c_str(), name, RRF_RT_REG_DWORD, nullptr, &number,
                     &size);
        return place + std::to_wstring(number);
    }
    if (type != REG_SZ) return place + L"a value of type " + std::to_wstring(type);
    std::wstring text(size / sizeof(wchar_t) + 1, L'\0');
    size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    RegGetValueW(expected.root, expected.key.c_str(), name, RRF_RT_REG_SZ, nullptr, text.data(),
                 &size);
    text.resize(wcslen(text.c_str()));
    return place + text;
}

bool KeyExists(HKEY root, const std::wstring& key) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
    RegCloseKey(opened);
    return true;
}

std::wstring FileVersion(const fs::path& file) {
    DWORD handle = 0;
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), &handle);
    if (size == 0) return L"";
    std::vector<unsigned char> data(size);
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT length = 0;
    if (!GetFileVersionInfoW(file.c_str(), 0, size, data.data()) ||
        !VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&fixed), &length) ||
        fixed == nullptr)
        return L"";
    return std::to_wstring(HIWORD(fixed->dwFileVersionMS)) + L"." +
           std::to_wstring(LOWORD(fixed->dwFileVersionMS)) + L"." +
           std::to_wstring(HIWORD(fixed->dwFileVersionLS));
}

std::vector<std::wstring> PendingRenames() {
    const wchar_t* key = L"System\\CurrentControlSet\\Control\\Session Manager";
    const wchar_t* value = L"PendingFileRenameOperations";
    DWORD size = 0;
    std::vector<std::wstring> names;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, key, value, RRF_RT_REG_MULTI_SZ, nullptr, nullptr,
                     &size) != ERROR_SUCCESS)
        return names;
    std::wstring text(size / sizeof(wchar_t), L'\0');
    RegGetValueW(HKEY_LOCAL_MACHINE, key, value, RRF_RT_REG_MULTI_SZ, nullptr, text.data(), &size);
    text.resize(size / sizeof(wchar_t));
    // Empty names are part of the list (a target of "" deletes), so the list is read to its
    // length, each name up to its terminator; the list's own terminator is the last empty one.
    for (std::size_t start = 0, end; (end = text.find(L'\0', start)) != std::wstring::npos;
         start = end + 1)
        names.push_back(text.substr(start, end - start));
    if (!names.empty() && names.back().empty()) names.pop_back();
    return names;
}

std::vector<std::wstring> InstalledVersions(const wchar_t* upgradeCode) {
    std::vector<std::wstring> versions;
    wchar_t product[39];
    for (DWORD index = 0; MsiEnumRelatedProductsW(upgradeCode, 0, index, product) == ERROR_SUCCESS;
         ++index) {
        wchar_t version[64];
        DWORD size = 64;
        if (MsiGetProductInfoW(product, L"VersionString", version, &size) == ERROR_SUCCESS)
            versions.emplace_back(version, size);
        else
            versions.emplace_back(L"?");
    }
    return versions;
}

}  // namespace arbolet::installer_testing
