// kvRegistry over advapi32's 8-bit registry functions.
#include "windows/registry/kv_registry.h"

#include <windows.h>

#include <algorithm>
#include <functional>

#include "base/vb_error.h"
#include "windows/base/ansi_text.h"
#include "windows/base/module_name.h"
#include "windows/registry/reg_key.h"

namespace arbolet::windows {
namespace {

// Query, set, create sub-key, enumerate, notify and create link; none of the standard rights.
constexpr REGSAM kAccessWrite = 0x3F;

// The status a write reports for a ValueType it does not write (VB's "Type mismatch").
constexpr LONG kStatusUnwritableType = 13;

// A status no registry function returns: the write check below tests for it, so a failed
// write goes unreported, which the callers have always relied on.
constexpr LONG kStatusAllBits = -1;

constexpr std::int32_t kInvalidProcedureCall = 5;

HKEY ToHandle(std::int32_t hiveValue) noexcept {
    // Sign-extended, as the predefined HKEY values are on 64-bit Windows.
    return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(hiveValue));
}

[[noreturn]] void RaiseInvalidProcedureCall() {
    throw VbError(kInvalidProcedureCall, RunningModuleName(), "Invalid procedure call or argument");
}

// The error object's defaults, for an error raised with a number only.
[[noreturn]] void RaiseNumberOnly(std::int32_t number) {
    throw VbError(number, RunningModuleName(), "Application-defined or object-defined error");
}

LONG OpenKey(std::int32_t hiveValue, const std::string& section, REGSAM access, RegKey& key) {
    return RegOpenKeyExA(ToHandle(hiveValue), Utf8ToAnsi(section).c_str(), 0, access, key.Put());
}

LONG CreateOrOpenKey(std::int32_t hiveValue, const std::string& section, RegKey& key) {
    SECURITY_ATTRIBUTES noSecurity{};
    DWORD disposition = 0;
    return RegCreateKeyExA(ToHandle(hiveValue), Utf8ToAnsi(section).c_str(), 0, nullptr,
                           REG_OPTION_NON_VOLATILE, kAccessWrite, &noSecurity, key.Put(),
                           &disposition);
}

// Some later "%" at least two characters after the first one, with text between them.
bool HasEnvironmentReference(std::string_view text) {
    const std::size_t first = text.find('%');
    return first != std::string_view::npos && text.find('%', first + 2) != std::string_view::npos;
}

// Expands %NAME% references in an ANSI text. The buffer is sized by a first call that
// measures, as the ANSI function asks for.
std::string ExpandEnvironment(const std::string& ansiText) {
    const DWORD needed = ExpandEnvironmentStringsA(ansiText.c_str(), nullptr, 0);
    if (needed == 0) RaiseInvalidProcedureCall();
    std::string expanded(needed - 1, '\0');
    ExpandEnvironmentStringsA(ansiText.c_str(), expanded.data(), needed);
    return expanded;
}

std::int32_t SwapByteOrder(std::int32_t value) noexcept {
    const auto bits = static_cast<std::uint32_t>(value);
    return static_cast<std::int32_t>((bits >> 24) | ((bits >> 8) & 0xFF00u) |
                                     ((bits << 8) & 0xFF0000u) | (bits << 24));
}

// A text value's data without its last byte: the terminator when it was stored with one.
std::string ReadAnsiText(HKEY key, const std::string& name, DWORD size) {
    if (size == 0) RaiseInvalidProcedureCall();
    std::string data(size, '\0');
    DWORD dataSize = size;
    RegQueryValueExA(key, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()),
                     &dataSize);
    data.resize(size - 1);
    return data;
}

std::int32_t ReadDword(HKEY key, const std::string& name) {
    DWORD number = 0;
    DWORD dataSize = sizeof number;
    RegQueryValueExA(key, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(&number),
                     &dataSize);
    return static_cast<std::int32_t>(number);
}

// The data in an array with bounds 0 to size, one element more than stored; the extra
// element stays 0.
ByteArray ReadBytes(HKEY key, const std::string& name, DWORD size) {
    std::vector<std::uint8_t> data(static_cast<std::size_t>(size) + 1, 0);
    DWORD dataSize = static_cast<DWORD>(data.size());
    RegQueryValueExA(key, name.c_str(), nullptr, nullptr, data.data(), &dataSize);
    return ByteArray(0, std::move(data));
}

RegValue ReadStoredValue(HKEY key, const std::string& name, DWORD type, DWORD size) {
    switch (type) {
        case REG_SZ:
        case REG_MULTI_SZ:
            return AnsiToUtf8(ReadAnsiText(key, name, size));
        case REG_EXPAND_SZ:
            return AnsiToUtf8(ExpandEnvironment(ReadAnsiText(key, name, size)));
        case REG_DWORD:
            return ReadDword(key, name);
        case REG_DWORD_BIG_ENDIAN:
            return SwapByteOrder(ReadDword(key, name));
        default:
            return ReadBytes(key, name, size);
    }
}

// The byte count is VB's length of the text (UTF-16 units) plus the terminator; where the ANSI
// form is shorter it is cut to that form, so nothing beyond it is read.
LONG WriteText(HKEY key, const std::string& name, const RegValue& value) {
    const std::string text = value.ToText();
    const DWORD type = HasEnvironmentReference(text) ? REG_EXPAND_SZ : REG_SZ;
    const std::wstring wide = Utf8ToWide(text);
    const std::string ansi = WideToAnsi(wide);
    const std::size_t count = std::min(wide.size(), ansi.size()) + 1;
    return RegSetValueExA(key, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(ansi.c_str()),
                          static_cast<DWORD>(count));
}

// Writes from element 0 a byte count of upper bound - lower bound - 1, two fewer than the
// array holds: a read returns one byte more than stored, so a value read and written back
// loses one byte. Arrays too short for any byte count are refused without a write.
LONG WriteBytes(HKEY key, const std::string& name, const RegValue& value) {
    const ByteArray* bytes = value.Bytes();
    if (bytes == nullptr) RaiseNumberOnly(kvRegistry::kErrRegistry);
    const std::int32_t upper = bytes->UBound();
    const std::int64_t count = std::int64_t{upper} - bytes->LBound() - 1;
    const std::uint8_t* first = &(*bytes)(0);
    if (count < 0) return ERROR_INVALID_PARAMETER;
    const std::int64_t available = std::int64_t{upper} + 1;
    return RegSetValueExA(key, name.c_str(), 0, REG_BINARY, first,
                          static_cast<DWORD>(std::min(count, available)));
}

// Integers only, always as little-endian REG_DWORD; anything else is skipped without a word.
LONG WriteDword(HKEY key, const std::string& name, const RegValue& value) {
    std::int32_t number = 0;
    if (const auto* integer = value.Integer()) {
        number = *integer;
    } else if (const auto* longValue = value.Long()) {
        number = *longValue;
    } else {
        return ERROR_SUCCESS;
    }
    const auto data = static_cast<DWORD>(number);
    return RegSetValueExA(key, name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&data),
                          sizeof data);
}

// Runs one statement of a method that must carry on past errors; the error is dropped.
void ResumeNext(const std::function<void()>& statement) noexcept {
    try {
        statement();
    } catch (...) {
    }
}

std::string Quoted(std::string_view path) {
    while (!path.empty() && path.front() == ' ')
        path.remove_prefix(1);
    while (!path.empty() && path.back() == ' ')
        path.remove_suffix(1);
    std::string quoted(path);
    if (quoted.empty() || quoted.front() != '"') quoted.insert(quoted.begin(), '"');
    if (quoted.back() != '"') quoted.push_back('"');
    return quoted;
}

}  // namespace

void kvRegistry::Raise(std::int32_t number, const std::string& description) {
    throw VbError(number, RunningModuleName() + ".cRegistry", description);
}

std::string kvRegistry::SetValueFailureText() const {
    return "Failed to set registry value Key: '" + HiveText() + "',Section: '" + section_ +
           "',Key: '" + valueName_ + "' to value: '" + lastWritten_.ToText() + "'";
}

bool kvRegistry::KeyExists() const {
    RegKey key;
    return OpenKey(hive_, section_, KEY_QUERY_VALUE, key) == ERROR_SUCCESS;
}

bool kvRegistry::CreateKey() const {
    RegKey key;
    if (CreateOrOpenKey(hive_, section_, key) != ERROR_SUCCESS) {
        Raise(kErrRegistry, "Failed to create registry Key: '" + section_);
    }
    return true;
}

bool kvRegistry::DeleteKey() const {
    if (RegDeleteKeyA(ToHandle(hive_), Utf8ToAnsi(section_).c_str()) != ERROR_SUCCESS) {
        Raise(kErrRegistry,
              "Failed to delete registry Key: '" + HiveText() + "',Section: '" + section_);
    }
    return true;
}

bool kvRegistry::DeleteValue() const {
    RegKey key;
    if (OpenKey(hive_, section_, kAccessWrite, key) != ERROR_SUCCESS) {
        Raise(kErrRegistry, "Failed to open key '" + HiveText() + "',Section: '" + section_ +
                                "' for delete access");
    }
    if (RegDeleteValueA(key.Get(), Utf8ToAnsi(valueName_).c_str()) != ERROR_SUCCESS) {
        Raise(kErrRegistry, "Failed to delete registry Key: '" + HiveText() + "',Section: '" +
                                section_ + "',Key: '" + valueName_);
    }
    return true;
}

bool kvRegistry::ValueExists() const {
    RegKey key;
    // The key is closed on every path: an add-in reads options in the IDE's process for as
    // long as it runs.
    if (OpenKey(hive_, section_, KEY_QUERY_VALUE, key) != ERROR_SUCCESS) return false;
    const HKEY openKey = key.Get();
    DWORD size = 0;
    const LONG status =
        RegQueryValueExA(openKey, Utf8ToAnsi(valueName_).c_str(), nullptr, nullptr, nullptr, &size);
    return status == ERROR_SUCCESS || status == ERROR_MORE_DATA;
}

RegValue kvRegistry::Value() {
    RegKey key;
    if (OpenKey(hive_, section_, KEY_QUERY_VALUE, key) != ERROR_SUCCESS) return default_;
    const HKEY openKey = key.Get();
    const std::string name = Utf8ToAnsi(valueName_);
    DWORD type = REG_NONE;
    DWORD size = 0;
    const LONG status = RegQueryValueExA(openKey, name.c_str(), nullptr, &type, nullptr, &size);
    if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return default_;
    valueType_ = static_cast<std::int32_t>(type);
    return ReadStoredValue(openKey, name, type, size);
}

void kvRegistry::Value(const RegValue& vValue) {
    const RegValue value = vValue;
    RegKey key;
    if (CreateOrOpenKey(hive_, section_, key) != ERROR_SUCCESS) {
        Raise(kErrRegistry, SetValueFailureText());
    }
    const std::string name = Utf8ToAnsi(valueName_);
    LONG status = kStatusUnwritableType;
    switch (valueType_) {
        case REG_SZ:
        case REG_EXPAND_SZ:
            status = WriteText(key.Get(), name, value);
            break;
        case REG_BINARY:
            status = WriteBytes(key.Get(), name, value);
            break;
        case REG_DWORD:
        case REG_DWORD_BIG_ENDIAN:
            status = WriteDword(key.Get(), name, value);
            break;
        default:
            break;
    }
    if (status == kStatusAllBits) Raise(kErrWriteStatus, SetValueFailureText());
    lastWritten_ = value;
}

bool kvRegistry::EnumerateValues(VbArray<std::string>& sKeyNames, std::int32_t& iKeyCount) const {
    iKeyCount = 0;
    sKeyNames.Erase();
    RegKey key;
    LONG status = OpenKey(hive_, section_, KEY_QUERY_VALUE, key);
    if (status != ERROR_SUCCESS) return true;
    DWORD longestName = 0;
    status = RegQueryInfoKeyA(key.Get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                              nullptr, &longestName, nullptr, nullptr, nullptr);
    for (DWORD index = 0; status == ERROR_SUCCESS; ++index) {
        std::string name(static_cast<std::size_t>(longestName) + 1, '\0');
        DWORD length = longestName + 1;
        status = RegEnumValueA(key.Get(), index, name.data(), &length, nullptr, nullptr, nullptr,
                               nullptr);
        if (status != ERROR_SUCCESS) break;
        name.resize(std::min<std::size_t>(length, name.size()));
        sKeyNames.Append(AnsiToUtf8(name));
        ++iKeyCount;
    }
    return true;
}

// Sub-key names go through a buffer of 255 characters, so a name of the full 255 characters
// (which needs a 256th for its terminator) ends the listing there.
bool kvRegistry::EnumerateSections(VbArray<std::string>& sSect, std::int32_t& iSectCount) const {
    constexpr DWORD kNameBufferLength = 255;
    iSectCount = 0;
    sSect.Erase();
    try {
        RegKey key;
        LONG status = OpenKey(hive_, section_, KEY_ENUMERATE_SUB_KEYS, key);
        for (DWORD index = 0; status == ERROR_SUCCESS; ++index) {
            std::string name(kNameBufferLength, '\0');
            status = RegEnumKeyA(key.Get(), index, name.data(), kNameBufferLength);
            if (status != ERROR_SUCCESS) break;
            name.resize(std::min(name.find('\0'), name.size()));
            sSect.Append(AnsiToUtf8(name));
            ++iSectCount;
        }
    } catch (const std::exception&) {
        return false;  // the names gathered before the error stay listed
    }
    return true;
}

void kvRegistry::WriteClassesValue(const std::string& sValue) {
    hive_ = hive::kClassesRoot;
    Value(sValue);
    const std::string section = section_;
    hive_ = hive::kLocalMachine;
    section_ = "SOFTWARE\\Classes\\" + section;
    Value(sValue);
    section_ = section;
}

void kvRegistry::WriteVerb(const std::string& sClassName, const std::string& sVerb,
                           const std::string& sMenuText, const std::string& sCommand) {
    section_ = sClassName + "\\shell\\" + sVerb;
    valueName_.clear();
    WriteClassesValue(sMenuText);
    section_ = sClassName + "\\shell\\" + sVerb + "\\command";
    valueName_.clear();
    WriteClassesValue(sCommand);
}

void kvRegistry::CreateEXEAssociation(const std::string& sExePath, const std::string& sClassName,
                                      const std::string& sClassDescription,
                                      const std::string& sAssociation, std::string sOpenMenuText,
                                      bool bSupportPrint, std::string sPrintMenuText,
                                      bool bSupportNew, std::string sNewMenuText,
                                      bool bSupportInstall, std::string sInstallMenuText,
                                      std::int32_t lDefaultIconIndex) {
    const std::string path = Quoted(sExePath);

    section_ = "." + sAssociation;
    valueType_ = REG_SZ;
    valueName_.clear();
    WriteClassesValue(sClassName);
    section_ = sClassName;
    WriteClassesValue(sClassDescription);

    // Unlike the other verbs, a given open text is replaced and an empty one kept.
    if (!sOpenMenuText.empty()) sOpenMenuText = "&Open";
    WriteVerb(sClassName, "open", sOpenMenuText, path + " \"%1\"");
    if (bSupportPrint) {
        if (sPrintMenuText.empty()) sPrintMenuText = "&Print";
        WriteVerb(sClassName, "print", sPrintMenuText, path + " /p \"%1\"");
    }
    if (bSupportInstall) {
        if (sInstallMenuText.empty()) sInstallMenuText = "&Install " + sAssociation;
        WriteVerb(sClassName, "add", sInstallMenuText, path + " /a \"%1\"");
    }
    if (bSupportNew) {
        if (sNewMenuText.empty()) sNewMenuText = "&New";
        WriteVerb(sClassName, "new", sNewMenuText, path + " /n \"%1\"");
    }
    if (lDefaultIconIndex > -1) {
        section_ = sClassName + "\\DefaultIcon";
        valueName_.clear();
        WriteClassesValue(path + "," + std::to_string(lDefaultIconIndex));
    }
}

// Errors raised inside are dropped statement by statement, so a failed write does not stop the
// ones after it, and the caller never hears of a bad list or a missing class.
void kvRegistry::CreateAdditionalEXEAssociations(const std::string& sClassName,
                                                 const std::vector<RegValue>& vItems) noexcept {
    if (vItems.size() % 3 != 0) {
        ResumeNext([] {
            Raise(kErrInvalidParameterList,
                  "Invalid parameter list passed to CreateAdditionalEXEAssociations - expected "
                  "Name/Text/Command");
        });
        return;
    }
    bool classDefined = false;
    ResumeNext([&] {
        section_ = sClassName;
        classDefined = KeyExists();
    });
    if (!classDefined) {
        ResumeNext([] {
            Raise(kErrClassNotDefined,
                  "Error - attempt to create additional associations before class defined.");
        });
        return;
    }
    for (std::size_t i = 0; i + 2 < vItems.size(); i += 3) {
        valueType_ = REG_SZ;
        ResumeNext([&] { section_ = sClassName + "\\shell\\" + vItems[i].ToText(); });
        valueName_.clear();
        ResumeNext([&] { WriteClassesValue(vItems[i + 1].ToText()); });
        ResumeNext([&] { section_ = sClassName + "\\shell\\" + vItems[i].ToText() + "\\command"; });
        valueName_.clear();
        ResumeNext([&] { WriteClassesValue(vItems[i + 2].ToText()); });
    }
}

}  // namespace arbolet::windows
