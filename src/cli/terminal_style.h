// ANSI styles for terminal output: node colours and bold, in as many colours as the terminal
// shows.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace arbolet::cli {

// How many colours a terminal shows.
enum class ColourDepth { Basic, Palette256, TrueColour };

// The depth the environment announces: COLORTERM=truecolor or 24bit for 24-bit colour, a TERM
// naming 256 colours for the palette, else the basic colours. Either may be null (unset).
ColourDepth DepthFromEnvironment(const char* term, const char* colorTerm);

// Whether colour suits the output by default: a terminal, NO_COLOR unset or empty, and a TERM
// other than "dumb".
bool ColourByDefault(bool isTerminal, const char* term, const char* noColor);

// The escape sequence that draws text in a Windows colour value (blue in the high byte); empty
// for black, which is left to the terminal's own foreground so that it shows on dark themes.
std::string AnsiForeground(std::int32_t windowsColour, ColourDepth depth = ColourDepth::TrueColour);

inline constexpr const char* kAnsiBold = "\x1b[1m";
inline constexpr const char* kAnsiReset = "\x1b[0m";

}  // namespace arbolet::cli
