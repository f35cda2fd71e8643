// The seven display-option flags shared by the commands that print code trees.
#pragma once

#include "analysis/display_options.h"

namespace CLI {
class App;
}

namespace arbolet::cli {

// Adds --hide-variables, --hide-constants, --hide-compiler, --hide-enums, --hide-types,
// --hide-section-ends and --sort-by-name; the flags write into `options`.
void AddDisplayFlags(CLI::App& command, analysis::DisplayOptions& options);

}  // namespace arbolet::cli
