// What an installed Arbolet package should leave on a Windows machine, and helpers to look:
// its files, its registry values, its Start-menu entry, and the installer's own records.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace arbolet::installer_testing {

enum class Scope { PerMachine, PerUser };

// Which optional files this build's packages hold.
struct PackageContents {
    bool addIn = false;
    bool explorer = false;
    bool help = false;
};

struct RegistryValue {
    HKEY root;
    std::wstring key;
    std::wstring name;  // empty: the key's default value
    std::variant<std::wstring, DWORD> value;
};

// An ASCII text as a wide one.
std::wstring Widen(const char* text);

// Runs a program and returns its exit code (or why it did not start).
DWORD RunProgram(std::wstring commandLine);
// Runs msiexec with `arguments` (for example L"/i \"C:\\x.msi\" /qn") and returns its exit code.
DWORD RunMsiexec(const std::wstring& arguments);

// A file's bytes (none when it cannot be read), and whether two files have the same bytes.
std::vector<char> FileBytes(const std::filesystem::path& file);
bool SameBytes(const std::filesystem::path& a, const std::filesystem::path& b);

// The Windows path of a file the build names with a host path.
std::wstring WindowsPath(const char* path);

// The folder a package of `scope` installs into.
std::filesystem::path InstallFolder(Scope scope);

// The Start-menu entries the explorer's shortcut may be in (the machine's or the user's).
std::vector<std::filesystem::path> StartMenuEntries();

// The installed files, and every registry value a package with `contents` writes.
std::vector<std::filesystem::path> ExpectedFiles(Scope scope, const PackageContents& contents);
std::vector<RegistryValue> ExpectedValues(Scope scope, const PackageContents& contents);

// Every key the package creates, outermost first; none of them may be left after removal.
std::vector<std::pair<HKEY, std::wstring>> CreatedKeys(Scope scope);

// "KEY\NAME = VALUE" for the value expected, and for what is stored at its place ("missing"
// when nothing is), so that a failed comparison shows both.
std::wstring ExpectedText(const RegistryValue& expected);
std::wstring StoredText(const RegistryValue& expected);
bool KeyExists(HKEY root, const std::wstring& key);

// The version in a program's or DLL's version resource ("1.2.3"), or "" when it has none.
std::wstring FileVersion(const std::filesystem::path& file);

// The files the system replaces or deletes at its next restart (PendingFileRenameOperations).
std::vector<std::wstring> PendingRenames();

// The versions of the installed products of the package's upgrade code.
std::vector<std::wstring> InstalledVersions(const wchar_t* upgradeCode);

}  // namespace arbolet::installer_testing
