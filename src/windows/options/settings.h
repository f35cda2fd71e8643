// The display option store: eight Boolean options, each one DWORD value under the product's key
// in HKEY_CLASSES_ROOT, read and written straight through on every call (nothing is cached).
//
// Reading a missing display option answers False but leaves 1 behind, so every later read
// answers True until the options are saved; a missing DisplayForm answers True at once. Writes
// store -1 for True and 0 for False. Registry errors propagate as VbError.
#pragma once

#include <string>

namespace arbolet::windows::options {

bool SortByName();
void SortByName(bool bValue);
bool ShowConstants();
void ShowConstants(bool bValue);
bool ShowSectionEnd();
void ShowSectionEnd(bool bValue);
bool ShowVariables();
void ShowVariables(bool bValue);
bool ShowTypes();
void ShowTypes(bool bValue);
bool ShowEnums();
void ShowEnums(bool bValue);
bool ShowCompiler();
void ShowCompiler(bool bValue);

// Whether procedure nodes show their size and complexity in their tips. Off until set: a missing
// value answers False and stays missing.
bool ShowMetrics();
void ShowMetrics(bool bValue);

// Whether the tool window opens when the IDE starts with the add-in loaded.
bool DisplayForm();
void DisplayForm(bool bValue);

// The key below HKEY_CLASSES_ROOT that holds the options.
std::string OptionsKeyPath();

}  // namespace arbolet::windows::options
