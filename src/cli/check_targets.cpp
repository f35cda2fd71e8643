// Which component files a `check` covers (see check_targets.h).
#include "cli/check_targets.h"

#include <algorithm>

#include "cli/cli_context.h"
#include "disk/component_file.h"

namespace arbolet::cli {
namespace fs = std::filesystem;
namespace {

void AddFolder(const fs::path& folder, std::vector<fs::path>& files, CliContext& context) {
    std::error_code ec;
    std::vector<fs::path> found;
    auto it =
        fs::recursive_directory_iterator(folder, fs::directory_options::skip_permission_denied, ec);
    for (; !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
        if (it->is_regular_file(ec) && disk::IsComponentFileName(it->path().filename().string())) {
            found.push_back(it->path());
        }
    }
    if (ec) {
        context.err << "arbolet: " << folder.generic_string() << ": " << ec.message() << '\n';
        context.Fail(kExitUsage);
    }
    std::sort(found.begin(), found.end());
    files.insert(files.end(), found.begin(), found.end());
}

}  // namespace

std::vector<fs::path> CollectCheckTargets(const std::vector<std::string>& paths,
                                          CliContext& context) {
    std::vector<fs::path> files;
    for (const auto& text : paths) {
        const fs::path path(text);
        std::error_code ec;
        if (fs::is_directory(path, ec)) {
            AddFolder(path, files, context);
        } else {
            // Files, existing or not, are checked as given: a missing one is reported as
            // unreadable.
            files.push_back(path);
        }
    }
    return files;
}

}  // namespace arbolet::cli
