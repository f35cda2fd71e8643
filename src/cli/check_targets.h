// Which component files a `check` of some paths covers.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace arbolet::cli {

struct CliContext;

// Expands each path: a folder to the component files below it (recursively, in a stable order),
// a .vbp project or .vbg group to the code components it lists, any other file to itself. A path
// that does not exist is reported on the error stream and sets the usage/I-O exit status; the
// other paths are still checked.
std::vector<std::filesystem::path> CollectCheckTargets(const std::vector<std::string>& paths,
                                                       CliContext& context);

}  // namespace arbolet::cli
