// The seven display-option flags (CLI11) shared by the programs that show code trees: the
// command-line tool's commands and the standalone explorer.
#pragma once

#include "analysis/display_options.h"

namespace CLI {
class App;
}

namespace arbolet::flags {

// Adds --hide-variables, --hide-constants, --hide-compiler, --hide-enums, --hide-types,
// --hide-section-ends and --sort-by-name; the flags write into `options`.
void AddDisplayFlags(CLI::App& command, analysis::DisplayOptions& options);

}  // namespace arbolet::flags
