// What registering the add-in writes: the COM classes of the connection object and of the
// tool-window control, and the key by which the VB6 IDE's add-in manager lists the add-in.
// Unregistering removes exactly the keys registering created, and nothing above them.
#pragma once

#include <windows.h>

#include <string>

namespace arbolet::windows::addin {

// Where the classes go. The machine's classes (HKEY_CLASSES_ROOT) are the ones an IDE run as
// administrator, and Wine, read; per-user classes (HKCU\Software\Classes) serve those who
// cannot write the machine's.
enum class ClassScope { Machine, User };

// The add-in manager's key below HKEY_CURRENT_USER.
std::wstring AddInKeyPath();

// Writes every key for the DLL at `dllPath`; on failure removes what it wrote and answers
// SELFREG_E_CLASS.
HRESULT RegisterAddIn(const std::wstring& dllPath, ClassScope scope) noexcept;
// Removes the keys; keys that are already gone are not an error.
HRESULT UnregisterAddIn(ClassScope scope) noexcept;

}  // namespace arbolet::windows::addin
