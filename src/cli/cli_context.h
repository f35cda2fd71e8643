// What every subcommand shares: the output streams, the code page, and the exit status it sets.
#pragma once

#include <ostream>

#include "cli/cli.h"
#include "disk/codepage.h"

namespace arbolet::cli {

inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFindings = 1;
inline constexpr int kExitUsage = 2;

struct CliContext {
    std::ostream& out;
    std::ostream& err;
    bool colour = false;
    ColourDepth colourDepth = ColourDepth::TrueColour;
    int codePage = disk::kDefaultCodePage;
    int exitCode = kExitSuccess;

    // Raises the exit status; a more serious status is never lowered.
    void Fail(int code) {
        if (code > exitCode) exitCode = code;
    }
};

}  // namespace arbolet::cli
