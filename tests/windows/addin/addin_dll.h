// The add-in DLL of this build, as the tests under Wine reach it, and the programs they run.
#pragma once

#include <windows.h>

#include <string>

namespace arbolet::windows::testing {

// The DLL's Windows path (the build tree seen through Wine's Z: drive).
std::wstring AddInDllPath();
// Runs a command line, waits for it, and answers its exit code (-1 when it did not start).
DWORD RunProgram(const std::wstring& commandLine);
// regsvr32 with `options` (for example L"/s" or L"/u /s") on the add-in DLL.
DWORD Regsvr32(const std::wstring& options);

}  // namespace arbolet::windows::testing
