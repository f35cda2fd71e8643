// What vb6host needs to run an installed add-in rather than the DLL beside it: which copies of a
// DLL this process has loaded, and holding the add-in loaded while another program (an
// installer replacing its files) does its work.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace arbolet::vb6host {

// The full paths of this process's loaded modules whose file name is `fileName` (compared
// case-blind, as Windows does).
std::vector<std::wstring> LoadedModulePaths(const std::wstring& fileName);

// The named events of a hold: `name`.held, which the holder sets once the add-in is loaded, and
// `name`.release, which another program sets to let it go on.
std::wstring HeldEventName(const std::wstring& name);
std::wstring ReleaseEventName(const std::wstring& name);

// Sets the held event, then waits (handling the window messages of this thread, as an idle IDE
// does) until the release event is set. False when an event cannot be made or `timeout` passes.
bool HoldUntilReleased(const std::wstring& name, DWORD timeoutMilliseconds);

}  // namespace arbolet::vb6host
