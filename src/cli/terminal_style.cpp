// ANSI styles for terminal output (see terminal_style.h).
#include "cli/terminal_style.h"

namespace arbolet::cli {

std::string AnsiForeground(std::int32_t colour) {
    if (colour == 0) return {};
    const int red = colour & 0xFF;
    const int green = (colour >> 8) & 0xFF;
    const int blue = (colour >> 16) & 0xFF;
    return "\x1b[38;2;" + std::to_string(red) + ';' + std::to_string(green) + ';' +
           std::to_string(blue) + 'm';
}

}  // namespace arbolet::cli
