// The arbolet command line: parses the arguments and runs one subcommand.
#pragma once

#include <iosfwd>

#include "cli/terminal_style.h"

namespace arbolet::cli {

struct Terminal {
    std::ostream& out;
    std::ostream& err;
    // Whether ANSI colours and bold suit `out` unless --color says otherwise.
    bool colour = false;
    // How many colours the terminal shows, also for --color always.
    ColourDepth depth = ColourDepth::TrueColour;
};

// Exit status: 0 success, 1 findings (check) or a refused operation, 2 usage or I/O errors.
int RunArbolet(int argc, const char* const* argv, Terminal terminal);

}  // namespace arbolet::cli
