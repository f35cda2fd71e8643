// Which component files a `check` covers (see check_targets.h).
#include "cli/check_targets.h"

#include <algorithm>

#include "base/utf8.h"
#include "cli/cli_context.h"
#include "cli/project_loading.h"
#include "disk/component_file.h"
#include "disk/vb_path.h"

namespace arbolet::cli {
namespace fs = std::filesystem;
namespace {

void AddFolder(const fs::path& folder, std::vector<fs::path>& files, CliContext& context) {
    std::error_code ec;
    std::vector<fs::path> found;
    auto it =
        fs::recursive_directory_iterator(folder, fs::directory_options::skip_permission_denied, ec);
    for (; !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
        if (it->is_regular_file(ec) &&
            disk::IsComponentFileName(disk::PathToUtf8(it->path().filename()))) {
            found.push_back(it->path());
        }
    }
    if (ec) {
        context.err << "arbolet: " << disk::PathToUtf8(folder.generic_u8string()) << ": "
                    << ec.message() << '\n';
        context.Fail(kExitUsage);
    }
    std::sort(found.begin(), found.end());
    files.insert(files.end(), found.begin(), found.end());
}

bool IsProjectOrGroup(const fs::path& path) {
    const std::string extension = text::ToLower(disk::PathToUtf8(path.extension()));
    return extension == ".vbp" || extension == ".vbg";
}

// The code components a project or group lists, in its order. Missing components are warned
// about while loading; a project that cannot be opened sets the usage/I-O exit status.
void AddProjectComponents(const std::string& project, std::vector<fs::path>& files,
                          CliContext& context) {
    const auto environment = OpenProjects({project}, context);
    if (!environment) return;
    const auto projects = environment->VBProjects();
    for (std::int32_t p = 1; p <= projects->Count(); ++p) {
        const auto components = projects->Item(p)->VBComponents();
        for (std::int32_t c = 1; c <= components->Count(); ++c) {
            const auto component = components->Item(c);
            const auto type = component->Type();
            if (type == env::ComponentType::ResFile ||
                type == env::ComponentType::RelatedDocument) {
                continue;
            }
            files.push_back(
                disk::PathFromUtf8(ShownPath(disk::PathFromUtf8(component->FileNames(1)))));
        }
    }
}

}  // namespace

std::vector<fs::path> CollectCheckTargets(const std::vector<std::string>& paths,
                                          CliContext& context) {
    std::vector<fs::path> files;
    for (const auto& text : paths) {
        const fs::path path = disk::PathFromUtf8(text);
        std::error_code ec;
        if (fs::is_directory(path, ec)) {
            AddFolder(path, files, context);
        } else if (IsProjectOrGroup(path)) {
            AddProjectComponents(text, files, context);
        } else {
            // Files, existing or not, are checked as given: a missing one is reported as
            // unreadable.
            files.push_back(path);
        }
    }
    return files;
}

}  // namespace arbolet::cli
