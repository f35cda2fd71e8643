// The arbolet command line: parses the arguments and runs one subcommand.
#pragma once

#include <iosfwd>

namespace arbolet::cli {

struct Terminal {
    std::ostream& out;
    std::ostream& err;
    // Whether ANSI colours and bold may be written to `out`.
    bool colour = false;
};

// Exit status: 0 success, 1 findings (check) or a refused operation, 2 usage or I/O errors.
int RunArbolet(int argc, const char* const* argv, Terminal terminal);

}  // namespace arbolet::cli
