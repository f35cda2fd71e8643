// What the client may set: the code page of closed files, whether document symbols go down to
// the blocks of each procedure, and the seven display options; from initializationOptions and
// from workspace/didChangeConfiguration. A value of the wrong type is ignored with a warning.
#pragma once

#include <string>
#include <vector>

#include "analysis/display_options.h"
#include "disk/codepage.h"
#include "lsp/protocol.h"

namespace arbolet::lsp {

// An outline lists blocks, not their closing lines: section ends are off unless asked for.
struct Settings {
    int codePage = disk::kDefaultCodePage;
    bool blocks = true;
    analysis::DisplayOptions display{.ShowSectionEnd = false};
};

// Applies initializationOptions ({codePage, blocks, display: {...}}); returns the warnings.
std::vector<std::string> ApplyInitializationOptions(const Json& options, Settings& settings);
// Applies didChangeConfiguration's settings ({arbolet: {codePage, blocks, display: {...}}}).
std::vector<std::string> ApplyConfiguration(const Json& settingsParam, Settings& settings);

}  // namespace arbolet::lsp
