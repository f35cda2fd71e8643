// The add-in's diagnostic log: when the environment variable ARBOLET_LOG names a file, lines
// are appended to it (and always sent to the debugger), so that a first run in a real IDE shows
// which interfaces its containers asked for and which calls failed.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace arbolet::windows::com {

bool LogEnabled() noexcept;
void Log(std::string_view line) noexcept;
// "{xxxxxxxx-...}", with the interface's name when it is one the add-in knows.
std::string InterfaceName(REFIID iid);
// Logs one QueryInterface that `object` answered with `hr`.
void LogQueryInterface(const char* object, REFIID iid, HRESULT hr) noexcept;

}  // namespace arbolet::windows::com
