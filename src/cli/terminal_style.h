// ANSI styles for terminal output: node colours and bold.
#pragma once

#include <cstdint>
#include <string>

namespace arbolet::cli {

// The escape sequence that draws text in a Windows colour value (blue in the high byte); empty
// for black, which is left to the terminal's own foreground so that it shows on dark themes.
std::string AnsiForeground(std::int32_t windowsColour);

inline constexpr const char* kAnsiBold = "\x1b[1m";
inline constexpr const char* kAnsiReset = "\x1b[0m";

}  // namespace arbolet::cli
