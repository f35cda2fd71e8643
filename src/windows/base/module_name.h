// The file name of the running module (the add-in DLL or a test executable), which VB-shaped
// classes use as the source of the errors they raise.
#pragma once

#include <string>

namespace arbolet::windows {

// The module's file name without folder and extension, as VB's App.EXEName gives it.
const std::string& RunningModuleName();

}  // namespace arbolet::windows
